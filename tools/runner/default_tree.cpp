// The files of the runner's default X-Plane tree, and writing them to disk.
#include "default_tree.h"

#include "host/portable.h"

#include <cerrno>
#include <cstdio>
#include <fstream>

const char* const defaultAircraftPath = "Aircraft/Laminar Research/Cessna 172 SP/Cessna_172SP.acf";

const TreeFile defaultTreeFiles[] = {
    {"Aircraft/Laminar Research/Cessna 172 SP/Cessna_172SP.acf",
     "I\n"
     "1200 version\n"
     "ACF\n"
     "\n"
     "PROPERTIES_BEGIN\n"
     "P acf/_ICAO C172\n"
     "P acf/_name Cessna 172 SP\n"
     "P acf/_studio Laminar Research\n"
     "P acf/_pe_xyz/0 0.0\n"
     "P acf/_pe_xyz/1 1.05\n"
     "P acf/_pe_xyz/2 0.35\n"
     "PROPERTIES_END\n"},
    // The plug-in's per-model camera file of the default aircraft: cockpit cameras, and
    // outside cameras that move with the aircraft or on their own.
    {"Aircraft/Laminar Research/Cessna 172 SP/Vistarig_Cessna_172SP.csv",
     "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition,HeadShake,RetainMouseLookPosition, Enable Temporary Positioning,Enable Linear Transition,Linear Transition Frames,Enable Auto Advance,Limit TrackIR, Max TrackIR X,Max TrackIR Y,Max TrackIR Z,Min TrackIR X,Min TrackIR Y,Min TrackIR Z,Zoom,FOV,Enable FOV,Smooth Camera Joins, Enable Track Heading, Enable Track Pitch, CGY Offset, CGZ Offset, Enable Level Camera, Enable View Axis, Enable External Camera, Enable Cineflex Camera, Enable Free Camera, Initial Movement Range, Enable Bezier Transition, Run Code,Transition Seconds,Hidden Camera,Vistarig Version,Default FOV,Aircraft,Author,Camera File Version,Category Index,Manual Enable, Latitude,Longitude, Elevation, X-Plane 9 Chase View, roll, Target Following Camera, Scenic Flyer GA Panel, Scenic Flyer Glass Panel, Cinema Verite, CGX Offset, Hide Yoke, Enable Camera Axis, Enable XPRealistic, Enable RealView, Disable 3D Cockpit Zoom, AGL Camera, Height ABove AGL (Meters),Circle View, Transition Delay, Script ID, Camera Origin,Target Reciprocal \n"
     "Cockpit,Pilot View,1,-0.280000,1.050000,0.350000,0.000000,0.000000,FALSE,FALSE,FALSE,TRUE,TRUE,FALSE,0,FALSE,FALSE,0.000000,0.000000,0.000000,0.000000,0.000000,0.000000,1.000000,60.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0.000000,FALSE,FALSE,FALSE,FALSE,FALSE,1,FALSE,0,0.0,FALSE,2.4.3,60.000000,Cessna_172SP,Vistarig Runner ,2024-01-01 12:00:00 ,0,FALSE,0,0,0,FALSE,0.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0,FALSE,FALSE,FALSE,FALSE,FALSE,0.000000,FALSE,0.0,0,0,FALSE\n"
     "Cockpit,Copilot,2,0.280000,1.050000,0.350000,0.000000,0.000000,FALSE,TRUE,FALSE,TRUE,TRUE,FALSE,0,FALSE,FALSE,0.000000,0.000000,0.000000,0.000000,0.000000,0.000000,1.000000,60.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0.000000,FALSE,FALSE,FALSE,FALSE,FALSE,1,FALSE,0,1.5,FALSE,2.4.3,60.000000,Cessna_172SP,Vistarig Runner ,2024-01-01 12:00:00 ,0,FALSE,0,0,0,FALSE,0.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0,FALSE,FALSE,FALSE,FALSE,FALSE,0.000000,FALSE,0.0,0,0,FALSE\n"
     "Cockpit,Panel Close,3,-0.280000,0.950000,-0.050000,0.000000,-15.000000,FALSE,FALSE,FALSE,TRUE,TRUE,TRUE,60,FALSE,FALSE,0.000000,0.000000,0.000000,0.000000,0.000000,0.000000,1.000000,60.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0.000000,FALSE,FALSE,FALSE,FALSE,FALSE,1,FALSE,0,0.0,FALSE,2.4.3,60.000000,Cessna_172SP,Vistarig Runner ,2024-01-01 12:00:00 ,0,FALSE,0,0,0,FALSE,0.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0,FALSE,FALSE,FALSE,FALSE,FALSE,0.000000,FALSE,0.0,0,0,FALSE\n"
     "Outside,Chase,4,0.000000,3.000000,18.000000,0.000000,-8.000000,FALSE,FALSE,FALSE,TRUE,TRUE,FALSE,0,FALSE,FALSE,0.000000,0.000000,0.000000,0.000000,0.000000,0.000000,1.000000,60.000000,FALSE,FALSE,TRUE,FALSE,0.000000,0.000000,FALSE,FALSE,TRUE,FALSE,FALSE,1,FALSE,0,0.0,FALSE,2.4.3,60.000000,Cessna_172SP,Vistarig Runner ,2024-01-01 12:00:00 ,1,FALSE,0,0,0,FALSE,0.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0,FALSE,FALSE,FALSE,FALSE,FALSE,0.000000,FALSE,0.0,0,0,FALSE\n"
     "Outside,Left Wing,5,-5.500000,1.600000,1.000000,60.000000,0.000000,FALSE,TRUE,FALSE,TRUE,TRUE,FALSE,0,FALSE,FALSE,0.000000,0.000000,0.000000,0.000000,0.000000,0.000000,1.000000,60.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0.000000,FALSE,FALSE,TRUE,FALSE,FALSE,1,FALSE,0,2.0,FALSE,2.4.3,60.000000,Cessna_172SP,Vistarig Runner ,2024-01-01 12:00:00 ,1,FALSE,0,0,0,FALSE,0.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0,FALSE,FALSE,FALSE,FALSE,FALSE,0.000000,FALSE,0.0,0,0,FALSE\n"
     "Outside,Tail Level,6,0.000000,2.200000,9.000000,0.000000,-4.000000,FALSE,FALSE,FALSE,TRUE,TRUE,FALSE,0,FALSE,FALSE,0.000000,0.000000,0.000000,0.000000,0.000000,0.000000,1.000000,60.000000,FALSE,FALSE,TRUE,FALSE,0.000000,0.000000,TRUE,FALSE,TRUE,FALSE,FALSE,1,FALSE,0,0.0,FALSE,2.4.3,60.000000,Cessna_172SP,Vistarig Runner ,2024-01-01 12:00:00 ,1,FALSE,0,0,0,FALSE,0.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0,FALSE,FALSE,FALSE,FALSE,FALSE,0.000000,FALSE,0.0,0,0,FALSE\n"
     "Outside,Belly,0,0.000000,-1.200000,0.500000,0.000000,10.000000,FALSE,TRUE,FALSE,TRUE,TRUE,FALSE,0,FALSE,FALSE,0.000000,0.000000,0.000000,0.000000,0.000000,0.000000,1.000000,60.000000,FALSE,TRUE,FALSE,FALSE,0.000000,0.000000,FALSE,FALSE,TRUE,FALSE,FALSE,1,FALSE,0,3.0,FALSE,2.4.3,60.000000,Cessna_172SP,Vistarig Runner ,2024-01-01 12:00:00 ,1,FALSE,0,0,0,FALSE,0.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0,FALSE,FALSE,FALSE,FALSE,FALSE,0.000000,FALSE,0.0,0,0,FALSE\n"
     // A Cineflex camera's heading is the world's, not the aircraft's: the default
     // flight heads east, so the side camera on its left looks south and the front
     // camera ahead of it looks west, back at it.
     "Flyby,Cineflex Side,7,-30.000000,2.000000,0.000000,180.000000,0.000000,FALSE,FALSE,FALSE,TRUE,TRUE,FALSE,0,FALSE,FALSE,0.000000,0.000000,0.000000,0.000000,0.000000,0.000000,1.000000,60.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0.000000,FALSE,FALSE,TRUE,TRUE,FALSE,1,TRUE,0,4.0,FALSE,2.4.3,60.000000,Cessna_172SP,Vistarig Runner ,2024-01-01 12:00:00 ,2,FALSE,0,0,0,FALSE,0.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0,FALSE,FALSE,FALSE,FALSE,FALSE,0.000000,FALSE,0.0,0,0,FALSE\n"
     "Flyby,Cineflex Front,0,0.000000,5.000000,-40.000000,270.000000,0.000000,FALSE,FALSE,FALSE,TRUE,TRUE,FALSE,0,FALSE,FALSE,0.000000,0.000000,0.000000,0.000000,0.000000,0.000000,1.000000,60.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0.000000,FALSE,FALSE,TRUE,TRUE,FALSE,1,TRUE,0,4.0,FALSE,2.4.3,60.000000,Cessna_172SP,Vistarig Runner ,2024-01-01 12:00:00 ,2,FALSE,0,0,0,FALSE,0.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0,FALSE,FALSE,FALSE,FALSE,FALSE,0.000000,FALSE,0.0,0,0,FALSE\n"
     // A chain: the first camera hands on by itself, and the view sweeps round the
     // aircraft from ahead to behind in linear legs with rounded joins.
     "Orbit,Sweep 0,0,0.000000,2.000000,-25.000000,180.000000,0.000000,FALSE,FALSE,FALSE,TRUE,FALSE,FALSE,0,TRUE,FALSE,0.000000,0.000000,0.000000,0.000000,0.000000,0.000000,1.000000,60.000000,FALSE,TRUE,TRUE,TRUE,0.000000,0.000000,FALSE,FALSE,TRUE,FALSE,FALSE,2,FALSE,0,0.0,FALSE,2.4.3,60.000000,Cessna_172SP,Vistarig Runner ,2024-01-01 12:00:00 ,3,FALSE,0,0,0,FALSE,0.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0,FALSE,FALSE,FALSE,FALSE,FALSE,0.000000,FALSE,0.0,0,0,FALSE\n"
     "Orbit,Sweep 1,0,-17.677670,2.800000,-17.677670,135.000000,0.000000,FALSE,FALSE,FALSE,TRUE,FALSE,TRUE,0,TRUE,FALSE,0.000000,0.000000,0.000000,0.000000,0.000000,0.000000,1.000000,60.000000,FALSE,TRUE,TRUE,TRUE,0.000000,0.000000,FALSE,FALSE,TRUE,FALSE,FALSE,2,FALSE,0,1.5,TRUE,2.4.3,60.000000,Cessna_172SP,Vistarig Runner ,2024-01-01 12:00:00 ,3,FALSE,0,0,0,FALSE,0.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0,FALSE,FALSE,FALSE,FALSE,FALSE,0.000000,FALSE,0.0,0,0,FALSE\n"
     "Orbit,Sweep 2,0,-25.000000,3.600000,0.000000,90.000000,0.000000,FALSE,FALSE,FALSE,TRUE,FALSE,TRUE,0,TRUE,FALSE,0.000000,0.000000,0.000000,0.000000,0.000000,0.000000,1.000000,60.000000,FALSE,TRUE,TRUE,TRUE,0.000000,0.000000,FALSE,FALSE,TRUE,FALSE,FALSE,2,FALSE,0,1.5,TRUE,2.4.3,60.000000,Cessna_172SP,Vistarig Runner ,2024-01-01 12:00:00 ,3,FALSE,0,0,0,FALSE,0.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0,FALSE,FALSE,FALSE,FALSE,FALSE,0.000000,FALSE,0.0,0,0,FALSE\n"
     "Orbit,Sweep 3,0,-17.677670,4.400000,17.677670,45.000000,0.000000,FALSE,FALSE,FALSE,TRUE,FALSE,TRUE,0,TRUE,FALSE,0.000000,0.000000,0.000000,0.000000,0.000000,0.000000,1.000000,60.000000,FALSE,TRUE,TRUE,TRUE,0.000000,0.000000,FALSE,FALSE,TRUE,FALSE,FALSE,2,FALSE,0,1.5,TRUE,2.4.3,60.000000,Cessna_172SP,Vistarig Runner ,2024-01-01 12:00:00 ,3,FALSE,0,0,0,FALSE,0.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0,FALSE,FALSE,FALSE,FALSE,FALSE,0.000000,FALSE,0.0,0,0,FALSE\n"
     "Orbit,Sweep 4,0,0.000000,5.200000,25.000000,0.000000,0.000000,FALSE,FALSE,FALSE,TRUE,FALSE,TRUE,0,TRUE,FALSE,0.000000,0.000000,0.000000,0.000000,0.000000,0.000000,1.000000,60.000000,FALSE,TRUE,TRUE,TRUE,0.000000,0.000000,FALSE,FALSE,TRUE,FALSE,FALSE,2,FALSE,0,1.5,TRUE,2.4.3,60.000000,Cessna_172SP,Vistarig Runner ,2024-01-01 12:00:00 ,3,FALSE,0,0,0,FALSE,0.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0,FALSE,FALSE,FALSE,FALSE,FALSE,0.000000,FALSE,0.0,0,0,FALSE\n"
     "Orbit,Sweep 5,0,17.677670,6.000000,17.677670,315.000000,0.000000,FALSE,FALSE,FALSE,TRUE,FALSE,TRUE,0,FALSE,FALSE,0.000000,0.000000,0.000000,0.000000,0.000000,0.000000,1.000000,60.000000,FALSE,TRUE,TRUE,TRUE,0.000000,0.000000,FALSE,FALSE,TRUE,FALSE,FALSE,2,FALSE,0,1.5,TRUE,2.4.3,60.000000,Cessna_172SP,Vistarig Runner ,2024-01-01 12:00:00 ,3,FALSE,0,0,0,FALSE,0.000000,FALSE,FALSE,FALSE,FALSE,0.000000,0,FALSE,FALSE,FALSE,FALSE,FALSE,0.000000,FALSE,0.0,0,0,FALSE\n"},
    // The aircraft's own preferences as the simulator keeps them (key, blank, value), with
    // the user's Quick Look views: two cockpit views, a ride-along, a circle and a chase
    // view, and a tower view that the plug-in doesn't take.
    {"Aircraft/Laminar Research/Cessna 172 SP/Cessna_172SP_prefs.txt",
     "I\n"
     "1200 Version\n"
     "_joy_use_acf_axis 0\n"
     "_iql_view_type_0 v_3dc\n"
     "_iql_pe_x_0 -0.280000\n"
     "_iql_pe_y_0 1.050000\n"
     "_iql_pe_z_0 0.350000\n"
     "_iql_look_os_psi_0 0.000000\n"
     "_iql_look_os_the_0 -10.000000\n"
     "_iql_circ_psi_0 0.000000\n"
     "_iql_circ_the_0 0.000000\n"
     "_iql_circ_dis_0 0.000000\n"
     "_iql_view_type_2 v_3dc\n"
     "_iql_pe_x_2 0.300000\n"
     "_iql_pe_y_2 1.000000\n"
     "_iql_pe_z_2 0.100000\n"
     "_iql_look_os_psi_2 315.000000\n"
     "_iql_look_os_the_2 -5.000000\n"
     "_iql_circ_psi_2 0.000000\n"
     "_iql_circ_the_2 0.000000\n"
     "_iql_circ_dis_2 0.000000\n"
     "_iql_view_type_5 v_rid\n"
     "_iql_pe_x_5 0.000000\n"
     "_iql_pe_y_5 0.000000\n"
     "_iql_pe_z_5 0.000000\n"
     "_iql_look_os_psi_5 0.000000\n"
     "_iql_look_os_the_5 0.000000\n"
     "_iql_circ_psi_5 30.000000\n"
     "_iql_circ_the_5 10.000000\n"
     "_iql_circ_dis_5 22.000000\n"
     "_iql_view_type_7 v_cir\n"
     "_iql_circ_psi_7 270.000000\n"
     "_iql_circ_the_7 15.000000\n"
     "_iql_circ_dis_7 40.000000\n"
     "_iql_view_type_9 v_twr\n"
     "_iql_circ_dis_9 300.000000\n"
     "_iql_view_type_11 v_cha\n"
     "_iql_circ_psi_11 0.000000\n"
     "_iql_circ_the_11 5.000000\n"
     "_iql_circ_dis_11 30.000000\n"
     "_sound_master 1.000000\n"},
    {"Resources/plugins/Vistarig/MyTargets/", ""},
    {"Resources/plugins/Vistarig/AircraftCameraBackups/", ""},
    {"Resources/plugins/Vistarig/CommunityAircraftCameras/", ""},
    {"Resources/plugins/Vistarig/MyAirportCameras/", ""},
    {"Resources/plugins/Vistarig/CommunityAirportCameras/", ""},
    {"Resources/plugins/", ""},
    {"Resources/fonts/", ""},
    {"Output/preferences/", ""},
    {"Custom Scenery/", ""},
};

const int defaultTreeFileCount = sizeof(defaultTreeFiles) / sizeof(defaultTreeFiles[0]);

namespace {

bool makeFolders(const std::string& path) {
    for (size_t i = 1; i < path.size(); ++i) {
        if (path[i] != '/') continue;
        std::string part = path.substr(0, i);
        if (mkdir(part.c_str(), 0755) != 0 && errno != EEXIST) return false;
    }
    return true;
}

bool copyFile(const std::string& from, const std::string& to) {
    std::ifstream in(from, std::ios::binary);
    if (!in) return false;
    std::string temporary = to + ".tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << in.rdbuf();
        if (!out) return false;
    }
    return std::rename(temporary.c_str(), to.c_str()) == 0;
}

}  // namespace

bool writeDefaultTree(const std::string& root, std::string& error) {
    for (int i = 0; i < defaultTreeFileCount; ++i) {
        std::string path = root + defaultTreeFiles[i].path;
        if (!makeFolders(path)) {
            error = "cannot make the folders of " + path;
            return false;
        }
        if (path.back() == '/') continue;
        std::string temporary = path + ".tmp";
        {
            std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
            out << defaultTreeFiles[i].content;
            if (!out) {
                error = "cannot write " + path;
                return false;
            }
        }
        if (std::rename(temporary.c_str(), path.c_str()) != 0) {
            error = "cannot write " + path;
            return false;
        }
    }
    // Scenery with real airports (their licences beside them): a custom pack for KSYR
    // above the global airports, and the default apt data last, in X-Plane's layout.
    const std::string data = std::string(VISTARIG_SOURCE_DIR) + "/tests/data/";
    const struct {
        const char* from;
        const char* to;
    } scenery[] = {
        {"apt/KSYR/apt.dat", "Custom Scenery/KSYR Syracuse/Earth nav data/apt.dat"},
        {"apt/KSYR/README.txt", "Custom Scenery/KSYR Syracuse/README.txt"},
        {"apt/gateway-sample/apt.dat", "Global Scenery/Global Airports/Earth nav data/apt.dat"},
        {"apt/gateway-sample/LICENSE", "Global Scenery/Global Airports/LICENSE"},
        {"apt/GMMT/apt.dat", "Resources/default scenery/default apt dat/Earth nav data/apt.dat"},
        {"apt/GMMT/LICENSE.txt", "Resources/default scenery/default apt dat/LICENSE.txt"},
    };
    for (const auto& file : scenery) {
        std::string to = root + file.to;
        if (makeFolders(to)) copyFile(data + file.from, to);
    }
    {
        std::ofstream packs(root + "Custom Scenery/scenery_packs.ini", std::ios::binary | std::ios::trunc);
        packs << "I\n1000 Version\nSCENERY\n\nSCENERY_PACK Custom Scenery/KSYR Syracuse/\nSCENERY_PACK *GLOBAL_AIRPORTS*\n";
    }
    // The panels' font, as X-Plane ships it.
    const char* font = "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf";
    struct stat st;
    if (stat(font, &st) == 0) copyFile(font, root + "Resources/fonts/Roboto-Regular.ttf");
    return true;
}
