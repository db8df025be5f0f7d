#include "net/web/curl_library.h"

#include <dlfcn.h>

#include <optional>

namespace netvane::net {
namespace {

/// 7.87: older ones ignore some of the options, among them the bound on protocols.
constexpr unsigned kOldestVersion = 0x075700;

std::optional<CurlLibrary> load()
{
    void* library = ::dlopen("libcurl.so.4", RTLD_LAZY | RTLD_LOCAL);
    bool isComplete = library;
    const auto find = [&](const char* name, auto& function) {
        using Function = std::remove_reference_t<decltype(function)>;
        function = isComplete ? reinterpret_cast<Function>(::dlsym(library, name)) : nullptr;
        isComplete = function;
    };
    CurlLibrary curl {};
    decltype(&curl_global_init) globalInit = nullptr;
    find("curl_easy_init", curl.easyInit);
    find("curl_easy_cleanup", curl.easyCleanup);
    find("curl_easy_setopt", curl.easySetopt);
    find("curl_easy_getinfo", curl.easyGetinfo);
    find("curl_easy_strerror", curl.easyStrerror);
    find("curl_multi_init", curl.multiInit);
    find("curl_multi_cleanup", curl.multiCleanup);
    find("curl_multi_add_handle", curl.multiAddHandle);
    find("curl_multi_remove_handle", curl.multiRemoveHandle);
    find("curl_multi_perform", curl.multiPerform);
    find("curl_multi_fdset", curl.multiFdset);
    find("curl_multi_timeout", curl.multiTimeout);
    find("curl_multi_info_read", curl.multiInfoRead);
    find("curl_slist_append", curl.slistAppend);
    find("curl_slist_free_all", curl.slistFreeAll);
    find("curl_version_info", curl.versionInfo);
    find("curl_global_init", globalInit);
    if (!isComplete || curl.versionInfo(CURLVERSION_NOW)->version_num < kOldestVersion
        || globalInit(CURL_GLOBAL_DEFAULT) != CURLE_OK)
        return {};
    return curl;
}

} // namespace

const CurlLibrary* curlLibrary()
{
    static const auto library = load();
    return library ? &*library : nullptr;
}

} // namespace netvane::net
