#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>

#include "import/art/ramp.h"

namespace halvo::art {

namespace {

// The share of one colour in the ramp, from the ends of its lines and places between.
struct Profile {
  Colour colour;
  std::vector<double> amount;
};

constexpr int kPlaces = 16;

bool sameColour(const Colour& a, const Colour& b) { return distance(a, b) < 1; }

// The colour of an end that cannot be seen hardly tells where the ramp nears it.
bool leadsAway(const Colour& seen, const Colour& gone) {
  constexpr double kNear = 8;
  return gone.alpha < 1.0 / 255 && distance(seen, gone) < kNear;
}

// At `kPlaces` places of each line, from its begin to its end.
std::vector<RampPoint> sampled(const std::vector<RampPoint>& ramp) {
  std::vector<RampPoint> result;
  for (std::size_t i = 0; i + 1 < ramp.size(); i += 2)
    for (int k = 0; k <= kPlaces; ++k) {
      const double s = static_cast<double>(k) / kPlaces;
      result.push_back({ramp[i].t + (ramp[i + 1].t - ramp[i].t) * s, between(ramp[i].colour, ramp[i + 1].colour, s)});
    }
  return result;
}

std::size_t profileOf(const Colour& colour, std::vector<Profile>& profiles, std::size_t places) {
  for (std::size_t i = 0; i < profiles.size(); ++i)
    if (sameColour(profiles[i].colour, colour)) return i;
  profiles.push_back({colour, std::vector<double>(places)});
  return profiles.size() - 1;
}

// How much of each colour of the ramp is laid at each place: in the end, what is not covered by those after it.
std::vector<Profile> profilesOf(const std::vector<RampPoint>& ramp, const std::vector<RampPoint>& places) {
  std::vector<Profile> profiles;
  for (std::size_t i = 0; i + 1 < ramp.size(); i += 2) {
    const Colour& from = ramp[i].colour;
    const Colour& to = ramp[i + 1].colour;
    const std::size_t a = profileOf(leadsAway(to, from) ? to : from, profiles, places.size());
    const std::size_t b = profileOf(leadsAway(from, to) ? from : to, profiles, places.size());
    for (int k = 0; k <= kPlaces; ++k) {
      const std::size_t place = i / 2 * (kPlaces + 1) + static_cast<std::size_t>(k);
      const double s = static_cast<double>(k) / kPlaces;
      profiles[a].amount[place] += (1 - s) * places[place].colour.alpha;
      profiles[b].amount[place] += s * places[place].colour.alpha;
    }
  }
  for (std::size_t place = 0; place < places.size(); ++place) {
    double above = 0;
    for (std::size_t i = profiles.size(); i-- > 0;) {
      const double own = profiles[i].amount[place];
      profiles[i].amount[place] = above < 0.999 ? std::min(1.0, own / (1 - above)) : 0;
      above += own;
    }
  }
  return profiles;
}

// Where the profile is at least so high, and lower than that.
std::vector<Stretch> whereWithin(const std::vector<RampPoint>& places, const std::vector<double>& amount, double low,
                                 double high) {
  std::vector<Stretch> result;
  const auto add = [&](double from, double to) {
    if (!(from < to)) return;
    if (!result.empty() && from - result.back().to < 1e-9)
      result.back().to = to;
    else
      result.push_back({from, to});
  };
  for (std::size_t i = 0; i + 1 < places.size(); ++i) {
    // From one line to the next.
    if (i % (kPlaces + 1) == kPlaces) continue;
    const double a = amount[i];
    const double rise = amount[i + 1] - a;
    const double length = places[i + 1].t - places[i].t;
    if (rise == 0) {
      if (a >= low && a < high) add(places[i].t, places[i + 1].t);
      continue;
    }
    const auto [first, last] = std::minmax({(low - a) / rise, (high - a) / rise});
    add(places[i].t + length * std::max(0.0, first), last >= 1 ? places[i + 1].t : places[i].t + length * last);
  }
  return result;
}

// The player blends in steps of 1/255. Each veil is chosen so that it makes up for the rounding of those before it, or
// their errors would add up to another colour: on backdrops of some brightnesses what comes out is reckoned along.
class VeilLayer {
 public:
  explicit VeilLayer(const Colour& colour) : wanted_{colour.red, colour.green, colour.blue} {
    for (auto& shown : shown_) std::copy(std::begin(kBackdrops), std::end(kBackdrops), shown.begin());
  }

  // What has still to be laid where it is to be that alpha in the end.
  double missing(double alpha) const { return laid_ < 1 ? (alpha - laid_) / (1 - laid_) : 0; }
  // The colour that brings what is laid to that alpha; nothing where it is too near.
  std::optional<Colour> upTo(double alpha) const {
    const Choice best = choose(alpha);
    if (best.own == 0) return std::nullopt;
    const double own = best.own;
    return Colour{best.parts[0] / own, best.parts[1] / own, best.parts[2] / own, own / 255};
  }
  // The same, for others to lie on.
  std::optional<Colour> lay(double alpha) {
    const Choice best = choose(alpha);
    const auto colour = upTo(alpha);
    if (!colour) return colour;
    laid_ = 1 - (1 - laid_) * (1 - best.own / 255.0);
    for (std::size_t i = 0; i < 3; ++i)
      for (int& shown : shown_[i]) shown = best.parts[i] + blended(shown, best.own);
    return colour;
  }

 private:
  static constexpr int kBackdrops[] = {255, 200, 140, 70};
  struct Choice {
    int own = 0;
    // Of the colour, multiplied by alpha.
    std::array<int, 3> parts{};
    double error = 1e9;
  };

  static int blended(int below, int own) { return static_cast<int>(std::lround(below * (255 - own) / 255.0)); }

  Choice choose(double alpha) const {
    const int middle = static_cast<int>(std::lround(255 * missing(alpha)));
    Choice best;
    if (middle <= 0) return best;
    for (int own = std::max(1, middle - 1); own <= std::min(255, middle + 1); ++own)
      if (const Choice choice = with(own, alpha); choice.error < best.error) best = choice;
    return best;
  }

  // The best parts for that alpha.
  Choice with(int own, double alpha) const {
    Choice choice{own, {}, 0};
    for (std::size_t i = 0; i < 3; ++i) {
      double least = 1e9;
      const int plain = static_cast<int>(wanted_[i] * own);
      for (int part = std::max(0, plain - 1); part <= std::min(own, plain + 2); ++part) {
        double error = 0;
        for (std::size_t k = 0; k < std::size(kBackdrops); ++k) {
          const double meant = 255 * wanted_[i] * alpha + kBackdrops[k] * (1 - alpha);
          const double off = part + blended(shown_[i][k], own) - meant;
          error += off * off;
        }
        if (error < least) {
          least = error;
          choice.parts[i] = part;
        }
      }
      choice.error += least;
    }
    return choice;
  }

  std::array<double, 3> wanted_;
  std::array<std::array<int, std::size(kBackdrops)>, 3> shown_{};
  double laid_ = 0;
};

// A veil lies wherever the profile is as high as it or higher, and what is missing between it and the next is laid in
// bands side by side, so that few blends are rounded at any place. Where two bands meet in a pixel, they let through by
// a quarter of the product of their alphas too much: no seam shows as long as they are as sheer as this.
constexpr double kSheerest = 0.125;

void addVeils(const std::vector<RampPoint>& places, const Profile& profile, double low, double high, int count,
              std::vector<Veil>& veils) {
  VeilLayer layer(profile.colour);
  const double step = (high - low) / count;
  for (int k = 0; k <= count; ++k) {
    const double alpha = low + step * k;
    const bool isLaid = k == 0 || layer.missing(alpha) > kSheerest;
    const auto colour = isLaid ? layer.lay(alpha) : layer.upTo(alpha);
    if (!colour) continue;
    const double from = k == 0 ? -1 : alpha - step / 2;
    Veil veil{whereWithin(places, profile.amount, from, isLaid || k == count ? 2 : alpha + step / 2), *colour};
    if (!veil.where.empty()) veils.push_back(std::move(veil));
  }
}

// How much of the ramp changes.
double changingLength(const std::vector<RampPoint>& ramp) {
  double sum = 0;
  for (std::size_t i = 0; i + 1 < ramp.size(); i += 2)
    if (!(ramp[i].colour == ramp[i + 1].colour)) sum += ramp[i + 1].t - ramp[i].t;
  return sum;
}

}  // namespace

std::vector<Veil> veilsOf(const std::vector<RampPoint>& ramp, const Fineness& fineness) {
  if (ramp.empty()) return {};
  const std::vector<RampPoint> places = sampled(ramp);
  const std::vector<Profile> profiles = profilesOf(ramp, places);
  std::vector<Veil> veils;
  const double seen = std::min<double>(fineness.most, changingLength(ramp) * fineness.mostPerUnit);
  const int most = std::max(1, static_cast<int>(seen / static_cast<double>(std::max<std::size_t>(1, profiles.size()))));
  for (const Profile& profile : profiles) {
    const auto [low, high] = std::minmax_element(profile.amount.begin(), profile.amount.end());
    if (*high < 0.5 / 255) continue;
    if (*high - *low < 0.5 / 255) {
      Veil veil{{{places.front().t, places.back().t}}, profile.colour};
      veil.colour.alpha = *high;
      veils.push_back(std::move(veil));
    } else {
      addVeils(places, profile, *low, *high,
               std::clamp(static_cast<int>(std::ceil((*high - *low) * 255 / fineness.step)), 1, most), veils);
    }
  }
  return veils;
}

}  // namespace halvo::art
