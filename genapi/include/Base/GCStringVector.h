// A list of gcstrings, as returned by symbolic listings and feature-bag error lists.
#ifndef GENICAM_GCSTRINGVECTOR_H
#define GENICAM_GCSTRINGVECTOR_H

#include <Base/GCString.h>

#include <vector>

namespace GenICam {

class gcstring_vector : public std::vector<gcstring> {
public:
    using std::vector<gcstring>::vector;
};

} // namespace GenICam

#endif
