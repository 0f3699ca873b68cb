// From a port back to the adapter of this folder that it is.
#pragma once

namespace quillon::component {

// The core only hands back what it got from here, so another kind of port is a mistake of ours, not of the platform:
// throws std::bad_cast.
template <class Adapter, class Port>
Adapter& adapterOf(Port& port) {
  return dynamic_cast<Adapter&>(port);
}

}  // namespace quillon::component
