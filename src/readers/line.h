#ifndef VEXLO_LINE_H
#define VEXLO_LINE_H

/// Size of the buffer for one line of a listing, and how much of it `fgets` may fill. A line of more than 1022
/// characters counts as several.
const int lineSize = 1024;
const int lineLimit = 1023;

#endif
