#ifndef DESK_WINDOW_WINDOW_KEYS_H
#define DESK_WINDOW_WINDOW_KEYS_H

#include "remote_strip.h"

#include <SDL.h>

#include <optional>

namespace desk
{

/// What a key of the keyboard does; nothing when it does nothing.
std::optional<Action> actionOf(const SDL_Keysym &pressed);

} // namespace desk

#endif
