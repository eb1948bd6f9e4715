#ifndef VEXLO_TESTS_SUPPORT_H
#define VEXLO_TESTS_SUPPORT_H

// The kit of the tests that play the plugin in the desk host.

#include "play.h"
#include "process.h"
#include "receiver_folder.h"
#include "temp_folder.h"

#endif
