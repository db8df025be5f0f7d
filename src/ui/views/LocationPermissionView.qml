import Netvane

BannerCard {
    id: root

    required property DashboardState viewState

    visible: viewState.needsLocationPermission
    symbol: "location.fill"
    tint: Theme.lightBlue
    title: "Location Permission Required"
    message: "Netvane needs Location Services permission to display your Wi-Fi network name (SSID). This is required by Linux for security reasons. Your location is not tracked - only Wi-Fi network information is accessed."

    PushButton {
        text: "Open System Settings"
        labelFont: Theme.caption
        prominent: true
        onClicked: root.viewState.openSystemSettings()
    }
    PushButton {
        visible: root.viewState.canRequestPermission
        text: "Request Permission"
        labelFont: Theme.caption
        onClicked: root.viewState.requestPermission()
    }
}
