#pragma once

#include <platform/qz_gmath.h>

// The shutter of a render.
class CtxMotionBlur {
  public:
    // One sample at time 0: nothing is blurred.
    CtxMotionBlur() : m_time_sampling(0.0) {}
    explicit CtxMotionBlur(GMathTimeSampling const& time_sampling)
        : m_time_sampling(time_sampling) {}

    // The shutter times at which the renderer bounds geometry; at least one.
    GMathTimeSampling const& get_time_sampling() const { return m_time_sampling; }

  private:
    GMathTimeSampling m_time_sampling;
};

// What all evaluations of one render share.
class CtxShader {
  public:
    CtxShader() = default;
    explicit CtxShader(CtxMotionBlur const& motion_blur) : m_motion_blur(motion_blur) {}

    CtxMotionBlur const& get_motion_blur() const { return m_motion_blur; }

  private:
    CtxMotionBlur m_motion_blur;
};

// The context of one query; each render thread has its own.
class CtxEval {
  public:
    CtxEval() = default;
    // `shader_ctx` is not owned and may be null: without one, the shutter has a single sample.
    explicit CtxEval(CtxShader const* shader_ctx) : m_shader_ctx(shader_ctx) {}

    CtxShader const* get_shader_ctx() const { return m_shader_ctx; }

  private:
    CtxShader const* m_shader_ctx = nullptr;
};
