import QtQuick

// A shortcut of the main menu in one window. Qt's own actions work in widget windows only.
Shortcut { }
