// Worlds.h - the dictionaries that the fuzz targets ask.
#ifndef QEADRS_FUZZ_WORLDS_H
#define QEADRS_FUZZ_WORLDS_H

#include "builder/ImageWriter.h"

#include <vector>

// A sound dictionary of all kinds of node, small enough to ask everything in each input.
std::vector<unsigned char> const& SmallWorld();
void AddSmallWorld(qe::CImageWriter& writer); // the same into a writer that is new, for more to be added

// The sample data, compiled.
std::vector<unsigned char> SampleWorld();

#endif
