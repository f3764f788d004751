#pragma once

#include "windows/Command.h"

/// What is fixed of a command of the viewer: identity, key, texts, places.
struct CommandRow {
    unsigned int id, group, type;
    unsigned int key, modifiers;             ///< as CCommandAccess::SetAccess takes them; key 0 for none
    unsigned int name, description;          ///< strings
    unsigned int icon;                       ///< resource number; 0 for none
    unsigned int menuOrder, toolbarOrder;    ///< block in the high half, place in it in the low; 0: has no place
    unsigned int states;                     ///< CommandState besides COMMAND_ENABLED
};

/// Null for an identifier that is not the viewer's.
const CommandRow* FindCommandRow(unsigned int id);
