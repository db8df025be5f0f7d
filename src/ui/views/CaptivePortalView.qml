import Netvane

BannerCard {
    id: root

    required property DashboardState viewState

    visible: viewState.isCaptive
    symbol: "exclamationmark.triangle.fill"
    tint: Theme.orange
    title: "Captive Portal Detected"
    message: "This network requires login. Open a browser to authenticate."

    PushButton {
        text: "Open Login Page"
        labelFont: Theme.captionEmphasis
        symbol: "arrow.up.right.square"
        symbolTrailing: true
        onClicked: root.viewState.openLoginPage()
    }
}
