#pragma once

/// The open files of the program that reads models.
namespace ReaderChannel {
constexpr int MESSAGES = 3; ///< a pipe: one line a message
constexpr int SCENE = 4;    ///< a file in memory, for the scene
constexpr int MODEL = 5;    ///< one with the model, where it is no file on disk
/// The positions of the arguments; folders of the search path follow.
enum Argument { PROGRAM, NAME, INNER_NAME, IS_PACKED, IS_IN_MEMORY, SECONDS, FIRST_FOLDER };
} // namespace ReaderChannel
