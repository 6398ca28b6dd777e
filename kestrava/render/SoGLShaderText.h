#pragma once

/// The texts that the programs of the renderer are put together from, see SoGLProgram::make().
namespace SoGLShaderText {

/// For all stages: what is known about the view, the lights, the fog and the clipping planes.
extern char const* const BLOCKS;
/// Members of the block that goes from stage to stage, without the word in front and the name behind.
extern char const* const SURFACE;
// Declarations and functions of a stage, and the fixed main() that goes with them.
extern char const* const VERTEX;
extern char const* const VERTEX_MAIN;
extern char const* const WIDEN_LINES;
extern char const* const GEOMETRY;
extern char const* const FRAGMENT;
extern char const* const FRAGMENT_MAIN;
// What follows a main() that the scene brings along.
extern char const* const VERTEX_CALL;
extern char const* const FRAGMENT_CALL;

} // namespace SoGLShaderText
