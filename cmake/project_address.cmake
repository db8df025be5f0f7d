# Where the project is found on the web. It has no address of its own: who publishes or packages it gives one by
# -DNETVANE_PROJECT_URL=https://... (`make deb` takes it from the environment). The report, the metainfo and the package
# name it then. Without one the report points to the manual page, which is on every computer that has the program.
set(NETVANE_PROJECT_URL "" CACHE STRING "Address of the project on the web, without a slash at its end")
set(NETVANE_SUPPORT_ADDRESS "man:netvane(1)")
if(NETVANE_PROJECT_URL)
    if(NOT NETVANE_PROJECT_URL MATCHES "^https://[-A-Za-z0-9._~/]*[A-Za-z0-9]$")
        message(FATAL_ERROR "NETVANE_PROJECT_URL is to be an https address, not '${NETVANE_PROJECT_URL}'")
    endif()
    set(NETVANE_SUPPORT_ADDRESS "${NETVANE_PROJECT_URL}")
endif()
