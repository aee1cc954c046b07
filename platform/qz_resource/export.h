#pragma once

#if defined(QZ_RESOURCE_STATIC_DEFINE)
#define QZ_RESOURCE_EXPORT
#elif defined(_WIN32)
#if defined(qz_resource_EXPORTS)
#define QZ_RESOURCE_EXPORT __declspec(dllexport)
#else
#define QZ_RESOURCE_EXPORT __declspec(dllimport)
#endif
#else
#define QZ_RESOURCE_EXPORT __attribute__((visibility("default")))
#endif
