#ifndef VEXLO_TOOLKIT_H
#define VEXLO_TOOLKIT_H

// What the plugin requires of the application that loads it. The plugin contains none of it but the
// inline pieces: all else is undefined in it and comes from the host. Class tree, order of virtual
// operations and signatures are therefore the host's, and must not be changed for convenience.

#include "edebug.h"
#include "elistbox.h"
#include "eskin.h"
#include "estring.h"
#include "ewidget.h"
#include "ewindow.h"
#include "geometry.h"
#include "signals.h"

#endif
