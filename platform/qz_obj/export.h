#pragma once

#if defined(QZ_OBJ_STATIC_DEFINE)
#define QZ_OBJ_EXPORT
#elif defined(_WIN32)
#if defined(qz_obj_EXPORTS)
#define QZ_OBJ_EXPORT __declspec(dllexport)
#else
#define QZ_OBJ_EXPORT __declspec(dllimport)
#endif
#else
#define QZ_OBJ_EXPORT __attribute__((visibility("default")))
#endif
