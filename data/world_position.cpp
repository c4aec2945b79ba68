#include "data/world_position.h"

#include "XPLMGraphics.h"

void worldToLocal(Camera* camera) {
    if (!camera->freeCamera) return;
    double x, y, z;
    XPLMWorldToLocal(camera->latitude, camera->longitude, camera->elevation, &x, &y, &z);
    camera->x = static_cast<float>(x);
    camera->y = static_cast<float>(y);
    camera->z = static_cast<float>(z);
    refreshHomePose(camera);
}

void localToWorld(Camera* camera) {
    XPLMLocalToWorld(camera->x, camera->y, camera->z, &camera->latitude, &camera->longitude,
                     &camera->elevation);
}
