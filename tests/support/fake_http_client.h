#pragma once

#include "simulated/desktop.h"
#include "simulated/http.h"

namespace netvane::test {

using FakeHttpClient = simulated::HttpClient;
using FakeUrlOpener = simulated::UrlOpener;

} // namespace netvane::test
