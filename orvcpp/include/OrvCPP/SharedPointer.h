#ifndef ORVCPP_SHAREDPOINTER_H
#define ORVCPP_SHAREDPOINTER_H

#include <memory>

namespace OrvCPP
{

// The camera API hands out every object through reference-counted handles.
template <typename T> using shared_ptr = std::shared_ptr<T>;

} // namespace OrvCPP

#endif
