#pragma once

#if defined(QZ_LWO_STATIC_DEFINE)
#define QZ_LWO_EXPORT
#elif defined(_WIN32)
#if defined(qz_lwo_EXPORTS)
#define QZ_LWO_EXPORT __declspec(dllexport)
#else
#define QZ_LWO_EXPORT __declspec(dllimport)
#endif
#else
#define QZ_LWO_EXPORT __attribute__((visibility("default")))
#endif
