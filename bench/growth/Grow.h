// Grow.h - a dictionary of many times the country, made of one of the country itself: to see what a query costs when
// the dictionary grows.
//
//   qe::CImage image = GrowDictionary(vByte, EGrowth::Cities, 10);   // 19,010 cities, 1,208,550 towns
//
// Copies    Copy 0 is the country as it is: grown once, a dictionary of our compiler comes out byte for byte. What is
//           copied besides bears in front of its name the mark of its copy, an ideograph that no Japanese address
//           uses. So no name of a copy equals or begins a name of another one, and a text asked for finds its own
//           copy only.
// Kinds     Cities: each prefecture has N times its cities, and a city as many towns as ever. Towns: the cities stay,
//           and each has N times its towns; a nameless town is copied to one that bears the mark alone.
// Below     Organisations bear the mark of their copy, too. Other texts below the towns (numbers, buildings) are the
//           same in all copies: the dictionary stores them once, however often they are used.
// Codes     Those of the copies are spread evenly over the codes that the country leaves free, in the order of the
//           originals. None is used twice as long as there are enough; then all are, as often as is needed. A
//           copy's old code is the beginning of its new code.
// Cost      For 100 times the country about a minute, 7 GB of memory and 1.5 GB of file.
#ifndef QEADRS_BENCH_GROWTH_GROW_H
#define QEADRS_BENCH_GROWTH_GROW_H

#include "builder/ImageWriter.h"

#include <cstdint>
#include <vector>

enum class EGrowth { Cities, Towns };

constexpr uint32_t MOST_TIMES = 1000; // marks reach further, the 4 GB of a file do not

// Throws qe::CBuildError when the dictionary is damaged, nTimes is 0 or above MOST_TIMES, and when it would exceed 4
// GB.
qe::CImage GrowDictionary(std::vector<unsigned char> const& vByte, EGrowth nKind, uint32_t nTimes);

#endif
