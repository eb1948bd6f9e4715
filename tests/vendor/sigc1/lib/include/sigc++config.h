// Real installations keep what configuring found out apart from the other headers.
#ifndef SIGCXX_CONFIG_H
#define SIGCXX_CONFIG_H
#define SIGCXX_MAJOR_VERSION 1
#define SIGCXX_MINOR_VERSION 0
#endif
