/// What becomes of the calls of a program that runs on this library.
#pragma once

#include <string_view>

namespace zev::ocicheck {

/// From best to worst.
enum class Fate {
  Works,
  Fails,    ///< returns a failure that a program can handle
  Stops,    ///< ends the process, unless the operator allows it to go on
  Unknown,  ///< not in the library: the program does not load, or does not find it
};

/// The fate of a call of a published function; Unknown for any other name.
Fate fateOf(std::string_view function);

/// Whether a name, past its prefix, can only be a function's: it is none of the
/// interface's types, and has two words or more.
bool isFunctionName(std::string_view name);

/// Whether a name is one of the calls that the interface had before service contexts.
bool isElderCall(std::string_view name);

}  // namespace zev::ocicheck
