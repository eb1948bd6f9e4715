// Real installations keep this configured header apart from the others.
#ifndef SIGCCONFIG_H
#define SIGCCONFIG_H
#define SIGC_MAJOR_VERSION 1
#define SIGC_MINOR_VERSION 2
#endif
