#pragma once

#if defined(QZ_GMATH_STATIC_DEFINE)
#define QZ_GMATH_EXPORT
#elif defined(_WIN32)
#if defined(qz_gmath_EXPORTS)
#define QZ_GMATH_EXPORT __declspec(dllexport)
#else
#define QZ_GMATH_EXPORT __declspec(dllimport)
#endif
#else
#define QZ_GMATH_EXPORT __attribute__((visibility("default")))
#endif
