// Distance over the Earth's surface between two positions in degrees: statute miles
// from the arc between them (60 minutes a degree, 1.1515 statute miles a minute), then
// kilometres for 'K' or nautical miles for 'N'.
#pragma once

#include <cmath>

inline double greatCircle(double lat1, double lon1, double lat2, double lon2, char unit) {
    // The same place is 0 without an arc cosine, which rounding can leave a hair above 0.
    if (lat1 == lat2 && lon1 == lon2) return 0.0;
    constexpr double kPi = 3.1415927410125732;  // pi as a float
    constexpr double kRadians = kPi / 180.0;
    double c = std::cos((lon1 - lon2) * kRadians) * std::cos(lat2 * kRadians) * std::cos(lat1 * kRadians) +
               std::sin(lat2 * kRadians) * std::sin(lat1 * kRadians);
    if (c > 1.0) c = 1.0;
    if (c < -1.0) c = -1.0;
    double statuteMiles = std::acos(c) / kRadians * 60.0 * 1.1515;
    return statuteMiles * (unit == 'K' ? 1.609344 : 0.8684);
}
