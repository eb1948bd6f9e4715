// The tests' precompiled header is built with this file.
