// HOSTSDK_API marks what the host port's shared library offers to plug-ins and hosts, HOSTSDK_ENTRY_POINT the functions
// that a host asks a plug-in for by name.
#pragma once

#if defined(_WIN32)
#if defined(HOSTSDK_BUILD)
#define HOSTSDK_API __declspec(dllexport)
#else
#define HOSTSDK_API __declspec(dllimport)
#endif
#define HOSTSDK_ENTRY_POINT extern "C" __declspec(dllexport)
#else
#define HOSTSDK_API __attribute__((visibility("default")))
#define HOSTSDK_ENTRY_POINT extern "C" __attribute__((visibility("default")))
#endif
