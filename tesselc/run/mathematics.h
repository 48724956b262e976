// Functions for scripts whose counterparts of the C library are wrong by up to three units in the
// last place, each in a way of its own: with these, both platforms agree to the last place or one
// beside it, as they do in all others.
#pragma once

namespace tesselc {

double Log10(double x);
double Tanh(double x);

}  // namespace tesselc
