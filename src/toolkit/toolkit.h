#ifndef VEXLO_TOOLKIT_H
#define VEXLO_TOOLKIT_H

// What the plugin requires of the application that loads it. The plugin contains only the inline functions;
// everything else is undefined in it and comes from the host. So the host fixes the class tree, the order of virtual
// operations and the signatures: do not change them for convenience.

#include "edebug.h"
#include "elistbox.h"
#include "eskin.h"
#include "estring.h"
#include "ewidget.h"
#include "ewindow.h"
#include "geometry.h"
#include "signals.h"

#endif
