#pragma once

#if defined(QZ_CORE_STATIC_DEFINE)
#define QZ_CORE_EXPORT
#elif defined(_WIN32)
#if defined(qz_core_EXPORTS)
#define QZ_CORE_EXPORT __declspec(dllexport)
#else
#define QZ_CORE_EXPORT __declspec(dllimport)
#endif
#else
#define QZ_CORE_EXPORT __attribute__((visibility("default")))
#endif
