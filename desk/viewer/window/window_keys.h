#ifndef DESK_WINDOW_WINDOW_KEYS_H
#define DESK_WINDOW_WINDOW_KEYS_H

#include "remote_strip.h"

#include <SDL.h>

#include <optional>

namespace desk
{

/// The action of a keyboard's key, if any.
std::optional<Action> actionOf(const SDL_Keysym &pressed);

} // namespace desk

#endif
