import QtQuick

// A key of the main menu in one window. Qt's own actions know only the windows of widgets.
Shortcut { }
