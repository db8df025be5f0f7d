#pragma once

#include <curl/curl.h>

namespace netvane::net {

/// The functions that are used of libcurl 7.87 or newer.
struct CurlLibrary {
    decltype(&curl_easy_init) easyInit;
    decltype(&curl_easy_cleanup) easyCleanup;
    decltype(&curl_easy_setopt) easySetopt;
    decltype(&curl_easy_getinfo) easyGetinfo;
    decltype(&curl_easy_strerror) easyStrerror;
    decltype(&curl_multi_init) multiInit;
    decltype(&curl_multi_cleanup) multiCleanup;
    decltype(&curl_multi_add_handle) multiAddHandle;
    decltype(&curl_multi_remove_handle) multiRemoveHandle;
    decltype(&curl_multi_perform) multiPerform;
    decltype(&curl_multi_fdset) multiFdset;
    decltype(&curl_multi_timeout) multiTimeout;
    decltype(&curl_multi_info_read) multiInfoRead;
    decltype(&curl_slist_append) slistAppend;
    decltype(&curl_slist_free_all) slistFreeAll;
    decltype(&curl_version_info) versionInfo;
};

/// Loads libcurl at the first call and keeps it. It depends on some thirty libraries; loading them
/// at the start would add a quarter to its CPU time. Null when it cannot be loaded. Any thread.
const CurlLibrary* curlLibrary();

} // namespace netvane::net
