#ifndef VEXLO_TESTS_SUPPORT_H
#define VEXLO_TESTS_SUPPORT_H

// All that tests need to run the plugin in the desk host.

#include "desk_run.h"
#include "process.h"
#include "receiver_folder.h"
#include "temp_folder.h"

#endif
