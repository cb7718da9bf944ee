// Empty on purpose: CMake ties a precompiled header to a target, and a target needs a source.
