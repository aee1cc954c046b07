#pragma once

#if defined(QZ_POLY_STATIC_DEFINE)
#define QZ_POLY_EXPORT
#elif defined(_WIN32)
#if defined(qz_poly_EXPORTS)
#define QZ_POLY_EXPORT __declspec(dllexport)
#else
#define QZ_POLY_EXPORT __declspec(dllimport)
#endif
#else
#define QZ_POLY_EXPORT __attribute__((visibility("default")))
#endif
