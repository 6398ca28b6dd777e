#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kestrava/base/SbString.h"

/// Where files are looked for by name: texts registered in memory, and a list of folders. Any thread.
namespace SoSearchPath {

void addInMemoryText(SbString const& name, SbString const& text);
/// Null when no text has that name.
std::shared_ptr<std::string const> getInMemoryText(SbString const& name);

/// A folder stands in the list once; adding it again moves it.
void addFirst(SbString const& folder);
void addLast(SbString const& folder);
void remove(SbString const& folder);
bool contains(SbString const& folder);
/// In order; each ends with a separator.
std::vector<std::string> getFolders();
/// The name itself when such a file exists, else the first one of that name in the folders; empty when
/// there is none.
SbString find(SbString const& name);
/// The same for a name that a file mentions: beside that file first, then as above.
SbString findBeside(SbString const& mentionedIn, SbString const& name);

}  // namespace SoSearchPath
