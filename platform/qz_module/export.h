#pragma once

#if defined(QZ_MODULE_STATIC_DEFINE)
#define QZ_MODULE_EXPORT
#elif defined(_WIN32)
#if defined(qz_module_EXPORTS)
#define QZ_MODULE_EXPORT __declspec(dllexport)
#else
#define QZ_MODULE_EXPORT __declspec(dllimport)
#endif
#else
#define QZ_MODULE_EXPORT __attribute__((visibility("default")))
#endif
