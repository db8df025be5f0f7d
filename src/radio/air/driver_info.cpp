#include "radio/air/driver_info.h"

#include "base/file_descriptor.h"
#include "base/visible_text.h"

#include <linux/ethtool.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <cstring>

namespace netvane::radio {
namespace {

template <size_t Size>
std::optional<QString> textOf(const char (&field)[Size])
{
    const QString text = QString::fromUtf8(field, qsizetype(::strnlen(field, Size))).trimmed();
    if (text.isEmpty() || text == QStringLiteral("N/A"))
        return {};
    return base::withVisibleControls(text);
}

} // namespace

DriverInfo driverInfoOf(const QByteArray& interfaceName)
{
    const base::FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!socket.isOpen() || interfaceName.size() >= IFNAMSIZ)
        return {};
    ethtool_drvinfo info {.cmd = ETHTOOL_GDRVINFO};
    ifreq request {};
    std::memcpy(request.ifr_name, interfaceName.constData(), size_t(interfaceName.size()));
    request.ifr_data = reinterpret_cast<char*>(&info);
    if (::ioctl(socket.get(), SIOCETHTOOL, &request) != 0)
        return {};
    return {textOf(info.driver), textOf(info.version), textOf(info.fw_version)};
}

} // namespace netvane::radio
