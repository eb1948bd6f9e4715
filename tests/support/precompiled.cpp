// The header that all tests share is compiled for this file.
