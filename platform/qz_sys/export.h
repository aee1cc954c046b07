#pragma once

#if defined(QZ_SYS_STATIC_DEFINE)
#define QZ_SYS_EXPORT
#elif defined(_WIN32)
#if defined(qz_sys_EXPORTS)
#define QZ_SYS_EXPORT __declspec(dllexport)
#else
#define QZ_SYS_EXPORT __declspec(dllimport)
#endif
#else
#define QZ_SYS_EXPORT __attribute__((visibility("default")))
#endif
