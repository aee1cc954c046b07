#pragma once

#if defined(QZ_GEOMETRY_STATIC_DEFINE)
#define QZ_GEOMETRY_EXPORT
#elif defined(_WIN32)
#if defined(qz_geometry_EXPORTS)
#define QZ_GEOMETRY_EXPORT __declspec(dllexport)
#else
#define QZ_GEOMETRY_EXPORT __declspec(dllimport)
#endif
#else
#define QZ_GEOMETRY_EXPORT __attribute__((visibility("default")))
#endif
