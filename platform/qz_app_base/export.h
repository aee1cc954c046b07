#pragma once

#if defined(QZ_APP_BASE_STATIC_DEFINE)
#define QZ_APP_BASE_EXPORT
#elif defined(_WIN32)
#if defined(qz_app_base_EXPORTS)
#define QZ_APP_BASE_EXPORT __declspec(dllexport)
#else
#define QZ_APP_BASE_EXPORT __declspec(dllimport)
#endif
#else
#define QZ_APP_BASE_EXPORT __attribute__((visibility("default")))
#endif
