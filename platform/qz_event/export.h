#pragma once

#if defined(QZ_EVENT_STATIC_DEFINE)
#define QZ_EVENT_EXPORT
#elif defined(_WIN32)
#if defined(qz_event_EXPORTS)
#define QZ_EVENT_EXPORT __declspec(dllexport)
#else
#define QZ_EVENT_EXPORT __declspec(dllimport)
#endif
#else
#define QZ_EVENT_EXPORT __attribute__((visibility("default")))
#endif
