#include "model/session.h"

#include "model/datum_table.h"

namespace velmora {

Session::Session() : host(nullptr), ownHost_(std::make_unique<Host>()) {
  host = ownHost_.get();
  InitDatums(*this);
}

Session::Session(Host& h) : host(&h) {
  InitDatums(*this);
}

double Rnd(Session& s) {
  return std::generate_canonical<double, 32>(s.Rng);
}

void Randomize(Session& s, uint32_t seed) {
  s.Rng.seed(seed);
}

} // namespace velmora
