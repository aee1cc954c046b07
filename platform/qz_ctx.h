#pragma once

// qz_ctx: what a render thread knows while it evaluates.

#include <platform/qz_ctx/ctx_eval.h>
