#pragma once

#include "kestrava/actions/SoAction.h"

/// What is registered with actions, for those who plan a traversal.
namespace SoActionMethods {

/// What an action type does at nodes of a type; null: nothing.
SoAction::Method find(SoType actionType, SoType nodeType);
/// Another number after each registration.
int getVersion();

} // namespace SoActionMethods
