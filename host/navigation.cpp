// The navigation database: a small default set of airports and navaids around the
// default position, joined at the first search by every airport of the scenery in the
// X-Plane tree (as X-Plane builds its database from the apt.dat files), replaceable by
// tests and scenarios, served through the XPLMNavigation search calls. The FMS calls
// answer as an empty flight plan.
#include <algorithm>
#include <iterator>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unordered_set>

#include "XPLMNavigation.h"
#include "host/host_internal.h"

namespace xphost {

namespace {

struct NavAid {
    int type;
    float latitude, longitude, height;  // height in metres
    int frequency;
    float heading;
    std::string id, name;
};

std::vector<NavAid>& database() {
    static std::vector<NavAid> navaids;
    return navaids;
}

bool sceneryRead = false;

void defaults() {
    sceneryRead = false;
    // Like-typed navaids stay together, as in X-Plane's database.
    database() = {
        {xplm_Nav_Airport, 47.4502f, -122.3088f, 131.0f, 0, 0, "KSEA", "Seattle Tacoma Intl"},
        {xplm_Nav_Airport, 47.5300f, -122.3020f, 6.0f, 0, 0, "KBFI", "Boeing Field King Co Intl"},
        {xplm_Nav_Airport, 47.4931f, -122.2158f, 9.0f, 0, 0, "KRNT", "Renton Muni"},
        {xplm_Nav_Airport, 47.9063f, -122.2816f, 185.0f, 0, 0, "KPAE", "Snohomish Co (Paine Fld)"},
        {xplm_Nav_VOR, 47.4354f, -122.3097f, 107.0f, 11680, 19.0f, "SEA", "Seattle VORTAC"},
    };
}

// Great-circle angle; only the order of distances matters here.
double angle(double lat1, double lon1, double lat2, double lon2) {
    const double r = 3.14159265358979323846 / 180.0;
    double dlat = (lat2 - lat1) * r, dlon = (lon2 - lon1) * r;
    double a = std::sin(dlat / 2) * std::sin(dlat / 2) +
               std::cos(lat1 * r) * std::cos(lat2 * r) * std::sin(dlon / 2) * std::sin(dlon / 2);
    return 2 * std::atan2(std::sqrt(a), std::sqrt(1 - a));
}

bool contains(const std::string& text, const char* fragment) {
    return !fragment || text.find(fragment) != std::string::npos;
}

void copyOut(char* out, const std::string& s, size_t size) {
    if (!out) return;
    size_t n = std::min(s.size(), size - 1);
    std::memcpy(out, s.data(), n);
    out[n] = 0;
}

// The airports of one apt.dat: the header's ID, name and elevation, and a position
// from the "datum_lat"/"datum_lon" metadata, else the middle of the first runway, else
// the first helipad or start location.
void readSceneryAirports(const std::string& path, std::unordered_set<std::string>& known) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return;
    struct Pending {
        std::string id, name;
        double elevationFeet = 0;
        bool positioned = false, datum = false;
        double latitude = 0, longitude = 0;
    } airport;
    auto finish = [&]() {
        if (!airport.id.empty() && airport.positioned && known.insert(airport.id).second)
            addAirport(airport.id, airport.name.empty() ? airport.id : airport.name, airport.latitude,
                       airport.longitude, airport.elevationFeet / 3.2808399);
        airport = Pending();
    };
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        std::istringstream fields(line);
        int code = 0;
        if (!(fields >> code)) continue;
        std::vector<std::string> f;
        for (std::string word; fields >> word;) f.push_back(word);
        auto number = [&](size_t i) {
            double value = 0;
            return i < f.size() && parseNumber(f[i], value) ? value : 0.0;
        };
        auto place = [&](double lat, double lon) {
            if (airport.positioned) return;
            airport.latitude = lat, airport.longitude = lon, airport.positioned = true;
        };
        if (code == 1 || code == 16 || code == 17) {
            finish();
            airport.elevationFeet = number(0);
            if (f.size() > 3) airport.id = f[3];
            for (size_t i = 4; i < f.size(); ++i) airport.name += (i > 4 ? " " : "") + f[i];
        } else if (code == 1302 && f.size() >= 2 && (f[0] == "datum_lat" || f[0] == "datum_lon")) {
            if (!airport.datum) airport.positioned = false;
            airport.datum = true;
            if (f[0] == "datum_lat") airport.latitude = number(1);
            else airport.longitude = number(1);
            airport.positioned = true;
        } else if (code == 100 && f.size() >= 19) {
            place((number(8) + number(17)) / 2, (number(9) + number(18)) / 2);
        } else if (code == 101 && f.size() >= 8) {
            place((number(3) + number(6)) / 2, (number(4) + number(7)) / 2);
        } else if (code == 102 && f.size() >= 3) {
            place(number(1), number(2));
        } else if ((code == 1300 || code == 15) && f.size() >= 2) {
            place(number(0), number(1));
        } else if (code == 99) {
            break;
        }
    }
    finish();
}

// Once after each reset, at the first search: the scenery's airports join the data.
void readSceneryOnce() {
    if (sceneryRead) return;
    sceneryRead = true;
    namespace fs = std::filesystem;
    const std::string& top = root();
    if (top.empty() || top == "/") return;
    std::unordered_set<std::string> known;
    for (const NavAid& aid : database())
        if (aid.type == xplm_Nav_Airport) known.insert(aid.id);
    std::vector<std::string> files;
    std::error_code error;
    std::vector<fs::path> packs;
    for (const auto& pack : fs::directory_iterator(top + "Custom Scenery", error)) packs.push_back(pack.path());
    std::sort(packs.begin(), packs.end());
    for (const fs::path& pack : packs) files.push_back((pack / "Earth nav data/apt.dat").string());
    files.push_back(top + "Global Scenery/Global Airports/Earth nav data/apt.dat");
    files.push_back(top + "Resources/default scenery/default apt dat/Earth nav data/apt.dat");
    for (const std::string& file : files) readSceneryAirports(file, known);
}

HostModule module("navigation", defaults);

ScenarioVerbRegistration airportVerb(
    "airport", "airport ID LATITUDE LONGITUDE [ELEVATION_M] [\"NAME\"]   (adds an airport to the nav data)",
    [](ScenarioLine& line) {
        if (line.args.size() < 4 || line.args.size() > 6)
            return std::string("usage: airport ID LATITUDE LONGITUDE [ELEVATION_M] [\"NAME\"]");
        double lat, lon, elevation = 0;
        if (!parseNumber(line.args[2], lat) || !parseNumber(line.args[3], lon) ||
            (line.args.size() > 4 && !parseNumber(line.args[4], elevation)))
            return std::string("latitude, longitude and elevation are numbers");
        addAirport(line.args[1], line.args.size() > 5 ? line.args[5] : line.args[1], lat, lon, elevation);
        return std::string();
    });

ScenarioVerbRegistration clearVerb("clear_navdata", "clear_navdata   (empties the nav data)", [](ScenarioLine&) {
    clearNavData();
    return std::string();
});

}  // namespace

void clearNavData() {
    ensureInitialized();
    database().clear();
    sceneryRead = true;  // an empty database stays empty
}

void addAirport(const std::string& id, const std::string& name, double latitude, double longitude,
                double elevationMetres) {
    ensureInitialized();
    auto& db = database();
    // After the last airport, so the airports stay together; found from the end, where
    // the few other aids are, so that a world of airports is added in linear time.
    auto at = db.end();
    while (at != db.begin() && std::prev(at)->type != xplm_Nav_Airport) --at;
    db.insert(at, NavAid{xplm_Nav_Airport, static_cast<float>(latitude), static_cast<float>(longitude),
                         static_cast<float>(elevationMetres), 0, 0, id, name});
}

}  // namespace xphost

using namespace xphost;

XPLMNavRef XPLMGetFirstNavAid(void) {
    if (!checkThread("XPLMGetFirstNavAid")) return XPLM_NAV_NOT_FOUND;
    readSceneryOnce();
    return database().empty() ? XPLM_NAV_NOT_FOUND : 0;
}

XPLMNavRef XPLMGetNextNavAid(XPLMNavRef inNavAidRef) {
    if (!checkThread("XPLMGetNextNavAid")) return XPLM_NAV_NOT_FOUND;
    readSceneryOnce();
    int n = static_cast<int>(database().size());
    if (inNavAidRef < 0 || inNavAidRef + 1 >= n) return XPLM_NAV_NOT_FOUND;
    return inNavAidRef + 1;
}

XPLMNavRef XPLMFindFirstNavAidOfType(XPLMNavType inType) {
    if (!checkThread("XPLMFindFirstNavAidOfType")) return XPLM_NAV_NOT_FOUND;
    readSceneryOnce();
    auto& db = database();
    for (size_t i = 0; i < db.size(); ++i)
        if (db[i].type == inType) return static_cast<int>(i);
    return XPLM_NAV_NOT_FOUND;
}

XPLMNavRef XPLMFindLastNavAidOfType(XPLMNavType inType) {
    if (!checkThread("XPLMFindLastNavAidOfType")) return XPLM_NAV_NOT_FOUND;
    readSceneryOnce();
    auto& db = database();
    for (size_t i = db.size(); i-- > 0;)
        if (db[i].type == inType) return static_cast<int>(i);
    return XPLM_NAV_NOT_FOUND;
}

XPLMNavRef XPLMFindNavAid(const char* inNameFragment, const char* inIDFragment, float* inLat, float* inLon,
                          int* inFrequency, XPLMNavType inType) {
    if (!checkThread("XPLMFindNavAid")) return XPLM_NAV_NOT_FOUND;
    readSceneryOnce();
    auto& db = database();
    XPLMNavRef found = XPLM_NAV_NOT_FOUND;
    double best = 1e9;
    for (size_t i = 0; i < db.size(); ++i) {
        const NavAid& n = db[i];
        if (!(n.type & inType) || !contains(n.name, inNameFragment) || !contains(n.id, inIDFragment)) continue;
        // Airports and fixes have no frequency and aren't screened out by one.
        if (inFrequency && n.type != xplm_Nav_Airport && n.type != xplm_Nav_Fix && n.frequency != *inFrequency)
            continue;
        if (inLat && inLon) {
            double d = angle(*inLat, *inLon, n.latitude, n.longitude);
            if (d < best) {
                best = d;
                found = static_cast<int>(i);
            }
        } else {
            found = static_cast<int>(i);  // the last one found
        }
    }
    return found;
}

void XPLMGetNavAidInfo(XPLMNavRef inRef, XPLMNavType* outType, float* outLatitude, float* outLongitude,
                       float* outHeight, int* outFrequency, float* outHeading, char* outID, char* outName,
                       char* outReg) {
    if (!checkThread("XPLMGetNavAidInfo")) return;
    readSceneryOnce();
    auto& db = database();
    if (inRef < 0 || inRef >= static_cast<int>(db.size())) {
        if (outType) *outType = xplm_Nav_Unknown;
        return;
    }
    const NavAid& n = db[inRef];
    if (outType) *outType = n.type;
    if (outLatitude) *outLatitude = n.latitude;
    if (outLongitude) *outLongitude = n.longitude;
    if (outHeight) *outHeight = n.height;
    if (outFrequency) *outFrequency = n.frequency;
    if (outHeading) *outHeading = n.heading;
    copyOut(outID, n.id, 32);
    copyOut(outName, n.name, 256);
    if (outReg) *outReg = 1;
}

int XPLMCountFMSEntries(void) {
    checkThread("XPLMCountFMSEntries");
    return 0;
}
int XPLMGetDisplayedFMSEntry(void) {
    checkThread("XPLMGetDisplayedFMSEntry");
    return 0;
}
int XPLMGetDestinationFMSEntry(void) {
    checkThread("XPLMGetDestinationFMSEntry");
    return 0;
}
void XPLMSetDisplayedFMSEntry(int inIndex) {
    checkThread("XPLMSetDisplayedFMSEntry");
}
void XPLMSetDestinationFMSEntry(int inIndex) {
    checkThread("XPLMSetDestinationFMSEntry");
}
void XPLMGetFMSEntryInfo(int inIndex, XPLMNavType* outType, char* outID, XPLMNavRef* outRef, int* outAltitude,
                         float* outLat, float* outLon) {
    if (!checkThread("XPLMGetFMSEntryInfo")) return;
    if (outType) *outType = xplm_Nav_Unknown;
    if (outID) outID[0] = 0;
    if (outRef) *outRef = XPLM_NAV_NOT_FOUND;
    if (outAltitude) *outAltitude = 0;
    if (outLat) *outLat = 0;
    if (outLon) *outLon = 0;
}
void XPLMSetFMSEntryInfo(int inIndex, XPLMNavRef inRef, int inAltitude) {
    checkThread("XPLMSetFMSEntryInfo");
}
void XPLMSetFMSEntryLatLon(int inIndex, float inLat, float inLon, int inAltitude) {
    checkThread("XPLMSetFMSEntryLatLon");
}
void XPLMClearFMSEntry(int inIndex) {
    checkThread("XPLMClearFMSEntry");
}
XPLMNavType XPLMGetGPSDestinationType(void) {
    checkThread("XPLMGetGPSDestinationType");
    return xplm_Nav_Unknown;
}
XPLMNavRef XPLMGetGPSDestination(void) {
    checkThread("XPLMGetGPSDestination");
    return XPLM_NAV_NOT_FOUND;
}
