// The OpenGL entry points a plug-in calls, defined here so that they resolve to the
// host before the system's libGL (which has no context in a headless run). Each one
// checks the calling thread, as X-Plane's GL context belongs to its main thread, and
// then calls Mesa's off-screen implementation.
#include <GL/gl.h>
#include <dlfcn.h>

#include "host/host_internal.h"

namespace {

void* mesa() {
    static void* handle = [] {
        void* h = dlopen("libOSMesa.so.8", RTLD_NOW | RTLD_NOLOAD);
        if (!h) h = dlopen("libOSMesa.so.8", RTLD_NOW);
        if (!h) h = dlopen("libOSMesa.so", RTLD_NOW);
        return h;
    }();
    return handle;
}

template <typename F>
F resolve(const char* name) {
    void* h = mesa();
    return h ? reinterpret_cast<F>(dlsym(h, name)) : nullptr;
}

}  // namespace

extern "C" {

GLAPI void GLAPIENTRY glBegin(GLenum mode) {
    using Fn = void (*)(GLenum mode);
    static const Fn real = resolve<Fn>("glBegin");
    if (!xphost::checkThread("glBegin") || !real) { return; }
    real(mode);
}

GLAPI void GLAPIENTRY glEnd(void) {
    using Fn = void (*)();
    static const Fn real = resolve<Fn>("glEnd");
    if (!xphost::checkThread("glEnd") || !real) { return; }
    real();
}

GLAPI void GLAPIENTRY glVertex2f(GLfloat x, GLfloat y) {
    using Fn = void (*)(GLfloat x, GLfloat y);
    static const Fn real = resolve<Fn>("glVertex2f");
    if (!xphost::checkThread("glVertex2f") || !real) { return; }
    real(x, y);
}

GLAPI void GLAPIENTRY glVertex2i(GLint x, GLint y) {
    using Fn = void (*)(GLint x, GLint y);
    static const Fn real = resolve<Fn>("glVertex2i");
    if (!xphost::checkThread("glVertex2i") || !real) { return; }
    real(x, y);
}

GLAPI void GLAPIENTRY glVertex3f(GLfloat x, GLfloat y, GLfloat z) {
    using Fn = void (*)(GLfloat x, GLfloat y, GLfloat z);
    static const Fn real = resolve<Fn>("glVertex3f");
    if (!xphost::checkThread("glVertex3f") || !real) { return; }
    real(x, y, z);
}

GLAPI void GLAPIENTRY glColor3f(GLfloat r, GLfloat g, GLfloat b) {
    using Fn = void (*)(GLfloat r, GLfloat g, GLfloat b);
    static const Fn real = resolve<Fn>("glColor3f");
    if (!xphost::checkThread("glColor3f") || !real) { return; }
    real(r, g, b);
}

GLAPI void GLAPIENTRY glColor4f(GLfloat r, GLfloat g, GLfloat b, GLfloat a) {
    using Fn = void (*)(GLfloat r, GLfloat g, GLfloat b, GLfloat a);
    static const Fn real = resolve<Fn>("glColor4f");
    if (!xphost::checkThread("glColor4f") || !real) { return; }
    real(r, g, b, a);
}

GLAPI void GLAPIENTRY glColor4ub(GLubyte r, GLubyte g, GLubyte b, GLubyte a) {
    using Fn = void (*)(GLubyte r, GLubyte g, GLubyte b, GLubyte a);
    static const Fn real = resolve<Fn>("glColor4ub");
    if (!xphost::checkThread("glColor4ub") || !real) { return; }
    real(r, g, b, a);
}

GLAPI void GLAPIENTRY glColor4fv(const GLfloat* v) {
    using Fn = void (*)(const GLfloat* v);
    static const Fn real = resolve<Fn>("glColor4fv");
    if (!xphost::checkThread("glColor4fv") || !real) { return; }
    real(v);
}

GLAPI void GLAPIENTRY glTexCoord2f(GLfloat s, GLfloat t) {
    using Fn = void (*)(GLfloat s, GLfloat t);
    static const Fn real = resolve<Fn>("glTexCoord2f");
    if (!xphost::checkThread("glTexCoord2f") || !real) { return; }
    real(s, t);
}

GLAPI void GLAPIENTRY glLineWidth(GLfloat width) {
    using Fn = void (*)(GLfloat width);
    static const Fn real = resolve<Fn>("glLineWidth");
    if (!xphost::checkThread("glLineWidth") || !real) { return; }
    real(width);
}

GLAPI void GLAPIENTRY glPointSize(GLfloat size) {
    using Fn = void (*)(GLfloat size);
    static const Fn real = resolve<Fn>("glPointSize");
    if (!xphost::checkThread("glPointSize") || !real) { return; }
    real(size);
}

GLAPI void GLAPIENTRY glRectf(GLfloat x1, GLfloat y1, GLfloat x2, GLfloat y2) {
    using Fn = void (*)(GLfloat x1, GLfloat y1, GLfloat x2, GLfloat y2);
    static const Fn real = resolve<Fn>("glRectf");
    if (!xphost::checkThread("glRectf") || !real) { return; }
    real(x1, y1, x2, y2);
}

GLAPI void GLAPIENTRY glEnable(GLenum cap) {
    using Fn = void (*)(GLenum cap);
    static const Fn real = resolve<Fn>("glEnable");
    if (!xphost::checkThread("glEnable") || !real) { return; }
    real(cap);
}

GLAPI void GLAPIENTRY glDisable(GLenum cap) {
    using Fn = void (*)(GLenum cap);
    static const Fn real = resolve<Fn>("glDisable");
    if (!xphost::checkThread("glDisable") || !real) { return; }
    real(cap);
}

GLAPI GLboolean GLAPIENTRY glIsEnabled(GLenum cap) {
    using Fn = GLboolean (*)(GLenum cap);
    static const Fn real = resolve<Fn>("glIsEnabled");
    if (!xphost::checkThread("glIsEnabled") || !real) { return 0; }
    return real(cap);
}

GLAPI void GLAPIENTRY glEnableClientState(GLenum cap) {
    using Fn = void (*)(GLenum cap);
    static const Fn real = resolve<Fn>("glEnableClientState");
    if (!xphost::checkThread("glEnableClientState") || !real) { return; }
    real(cap);
}

GLAPI void GLAPIENTRY glDisableClientState(GLenum cap) {
    using Fn = void (*)(GLenum cap);
    static const Fn real = resolve<Fn>("glDisableClientState");
    if (!xphost::checkThread("glDisableClientState") || !real) { return; }
    real(cap);
}

GLAPI void GLAPIENTRY glPushAttrib(GLbitfield mask) {
    using Fn = void (*)(GLbitfield mask);
    static const Fn real = resolve<Fn>("glPushAttrib");
    if (!xphost::checkThread("glPushAttrib") || !real) { return; }
    real(mask);
}

GLAPI void GLAPIENTRY glPopAttrib(void) {
    using Fn = void (*)();
    static const Fn real = resolve<Fn>("glPopAttrib");
    if (!xphost::checkThread("glPopAttrib") || !real) { return; }
    real();
}

GLAPI void GLAPIENTRY glPushClientAttrib(GLbitfield mask) {
    using Fn = void (*)(GLbitfield mask);
    static const Fn real = resolve<Fn>("glPushClientAttrib");
    if (!xphost::checkThread("glPushClientAttrib") || !real) { return; }
    real(mask);
}

GLAPI void GLAPIENTRY glPopClientAttrib(void) {
    using Fn = void (*)();
    static const Fn real = resolve<Fn>("glPopClientAttrib");
    if (!xphost::checkThread("glPopClientAttrib") || !real) { return; }
    real();
}

GLAPI void GLAPIENTRY glMatrixMode(GLenum mode) {
    using Fn = void (*)(GLenum mode);
    static const Fn real = resolve<Fn>("glMatrixMode");
    if (!xphost::checkThread("glMatrixMode") || !real) { return; }
    real(mode);
}

GLAPI void GLAPIENTRY glPushMatrix(void) {
    using Fn = void (*)();
    static const Fn real = resolve<Fn>("glPushMatrix");
    if (!xphost::checkThread("glPushMatrix") || !real) { return; }
    real();
}

GLAPI void GLAPIENTRY glPopMatrix(void) {
    using Fn = void (*)();
    static const Fn real = resolve<Fn>("glPopMatrix");
    if (!xphost::checkThread("glPopMatrix") || !real) { return; }
    real();
}

GLAPI void GLAPIENTRY glLoadIdentity(void) {
    using Fn = void (*)();
    static const Fn real = resolve<Fn>("glLoadIdentity");
    if (!xphost::checkThread("glLoadIdentity") || !real) { return; }
    real();
}

GLAPI void GLAPIENTRY glLoadMatrixf(const GLfloat* m) {
    using Fn = void (*)(const GLfloat* m);
    static const Fn real = resolve<Fn>("glLoadMatrixf");
    if (!xphost::checkThread("glLoadMatrixf") || !real) { return; }
    real(m);
}

GLAPI void GLAPIENTRY glMultMatrixf(const GLfloat* m) {
    using Fn = void (*)(const GLfloat* m);
    static const Fn real = resolve<Fn>("glMultMatrixf");
    if (!xphost::checkThread("glMultMatrixf") || !real) { return; }
    real(m);
}

GLAPI void GLAPIENTRY glOrtho(GLdouble l, GLdouble r, GLdouble b, GLdouble t, GLdouble n, GLdouble f) {
    using Fn = void (*)(GLdouble l, GLdouble r, GLdouble b, GLdouble t, GLdouble n, GLdouble f);
    static const Fn real = resolve<Fn>("glOrtho");
    if (!xphost::checkThread("glOrtho") || !real) { return; }
    real(l, r, b, t, n, f);
}

GLAPI void GLAPIENTRY glScalef(GLfloat x, GLfloat y, GLfloat z) {
    using Fn = void (*)(GLfloat x, GLfloat y, GLfloat z);
    static const Fn real = resolve<Fn>("glScalef");
    if (!xphost::checkThread("glScalef") || !real) { return; }
    real(x, y, z);
}

GLAPI void GLAPIENTRY glTranslatef(GLfloat x, GLfloat y, GLfloat z) {
    using Fn = void (*)(GLfloat x, GLfloat y, GLfloat z);
    static const Fn real = resolve<Fn>("glTranslatef");
    if (!xphost::checkThread("glTranslatef") || !real) { return; }
    real(x, y, z);
}

GLAPI void GLAPIENTRY glRotatef(GLfloat a, GLfloat x, GLfloat y, GLfloat z) {
    using Fn = void (*)(GLfloat a, GLfloat x, GLfloat y, GLfloat z);
    static const Fn real = resolve<Fn>("glRotatef");
    if (!xphost::checkThread("glRotatef") || !real) { return; }
    real(a, x, y, z);
}

GLAPI void GLAPIENTRY glViewport(GLint x, GLint y, GLsizei w, GLsizei h) {
    using Fn = void (*)(GLint x, GLint y, GLsizei w, GLsizei h);
    static const Fn real = resolve<Fn>("glViewport");
    if (!xphost::checkThread("glViewport") || !real) { return; }
    real(x, y, w, h);
}

GLAPI void GLAPIENTRY glScissor(GLint x, GLint y, GLsizei w, GLsizei h) {
    using Fn = void (*)(GLint x, GLint y, GLsizei w, GLsizei h);
    static const Fn real = resolve<Fn>("glScissor");
    if (!xphost::checkThread("glScissor") || !real) { return; }
    real(x, y, w, h);
}

GLAPI void GLAPIENTRY glClear(GLbitfield mask) {
    using Fn = void (*)(GLbitfield mask);
    static const Fn real = resolve<Fn>("glClear");
    if (!xphost::checkThread("glClear") || !real) { return; }
    real(mask);
}

GLAPI void GLAPIENTRY glClearColor(GLclampf r, GLclampf g, GLclampf b, GLclampf a) {
    using Fn = void (*)(GLclampf r, GLclampf g, GLclampf b, GLclampf a);
    static const Fn real = resolve<Fn>("glClearColor");
    if (!xphost::checkThread("glClearColor") || !real) { return; }
    real(r, g, b, a);
}

GLAPI void GLAPIENTRY glBlendFunc(GLenum s, GLenum d) {
    using Fn = void (*)(GLenum s, GLenum d);
    static const Fn real = resolve<Fn>("glBlendFunc");
    if (!xphost::checkThread("glBlendFunc") || !real) { return; }
    real(s, d);
}

GLAPI void GLAPIENTRY glAlphaFunc(GLenum func, GLclampf ref) {
    using Fn = void (*)(GLenum func, GLclampf ref);
    static const Fn real = resolve<Fn>("glAlphaFunc");
    if (!xphost::checkThread("glAlphaFunc") || !real) { return; }
    real(func, ref);
}

GLAPI void GLAPIENTRY glDepthMask(GLboolean flag) {
    using Fn = void (*)(GLboolean flag);
    static const Fn real = resolve<Fn>("glDepthMask");
    if (!xphost::checkThread("glDepthMask") || !real) { return; }
    real(flag);
}

GLAPI void GLAPIENTRY glDepthFunc(GLenum func) {
    using Fn = void (*)(GLenum func);
    static const Fn real = resolve<Fn>("glDepthFunc");
    if (!xphost::checkThread("glDepthFunc") || !real) { return; }
    real(func);
}

GLAPI void GLAPIENTRY glShadeModel(GLenum mode) {
    using Fn = void (*)(GLenum mode);
    static const Fn real = resolve<Fn>("glShadeModel");
    if (!xphost::checkThread("glShadeModel") || !real) { return; }
    real(mode);
}

GLAPI void GLAPIENTRY glHint(GLenum target, GLenum mode) {
    using Fn = void (*)(GLenum target, GLenum mode);
    static const Fn real = resolve<Fn>("glHint");
    if (!xphost::checkThread("glHint") || !real) { return; }
    real(target, mode);
}

GLAPI void GLAPIENTRY glGetFloatv(GLenum pname, GLfloat* params) {
    using Fn = void (*)(GLenum pname, GLfloat* params);
    static const Fn real = resolve<Fn>("glGetFloatv");
    if (!xphost::checkThread("glGetFloatv") || !real) { return; }
    real(pname, params);
}

GLAPI void GLAPIENTRY glGetIntegerv(GLenum pname, GLint* params) {
    using Fn = void (*)(GLenum pname, GLint* params);
    static const Fn real = resolve<Fn>("glGetIntegerv");
    if (!xphost::checkThread("glGetIntegerv") || !real) { return; }
    real(pname, params);
}

GLAPI void GLAPIENTRY glGetDoublev(GLenum pname, GLdouble* params) {
    using Fn = void (*)(GLenum pname, GLdouble* params);
    static const Fn real = resolve<Fn>("glGetDoublev");
    if (!xphost::checkThread("glGetDoublev") || !real) { return; }
    real(pname, params);
}

GLAPI void GLAPIENTRY glGetBooleanv(GLenum pname, GLboolean* params) {
    using Fn = void (*)(GLenum pname, GLboolean* params);
    static const Fn real = resolve<Fn>("glGetBooleanv");
    if (!xphost::checkThread("glGetBooleanv") || !real) { return; }
    real(pname, params);
}

GLAPI GLenum GLAPIENTRY glGetError(void) {
    using Fn = GLenum (*)();
    static const Fn real = resolve<Fn>("glGetError");
    if (!xphost::checkThread("glGetError") || !real) { return 0; }
    return real();
}

GLAPI const GLubyte* GLAPIENTRY glGetString(GLenum name) {
    using Fn = const GLubyte* (*)(GLenum name);
    static const Fn real = resolve<Fn>("glGetString");
    if (!xphost::checkThread("glGetString") || !real) { return 0; }
    return real(name);
}

GLAPI void GLAPIENTRY glFlush(void) {
    using Fn = void (*)();
    static const Fn real = resolve<Fn>("glFlush");
    if (!xphost::checkThread("glFlush") || !real) { return; }
    real();
}

GLAPI void GLAPIENTRY glFinish(void) {
    using Fn = void (*)();
    static const Fn real = resolve<Fn>("glFinish");
    if (!xphost::checkThread("glFinish") || !real) { return; }
    real();
}

GLAPI void GLAPIENTRY glGenTextures(GLsizei n, GLuint* textures) {
    using Fn = void (*)(GLsizei n, GLuint* textures);
    static const Fn real = resolve<Fn>("glGenTextures");
    if (!xphost::checkThread("glGenTextures") || !real) { return; }
    real(n, textures);
}

GLAPI void GLAPIENTRY glDeleteTextures(GLsizei n, const GLuint* textures) {
    using Fn = void (*)(GLsizei n, const GLuint* textures);
    static const Fn real = resolve<Fn>("glDeleteTextures");
    if (!xphost::checkThread("glDeleteTextures") || !real) { return; }
    real(n, textures);
}

GLAPI void GLAPIENTRY glBindTexture(GLenum target, GLuint texture) {
    using Fn = void (*)(GLenum target, GLuint texture);
    static const Fn real = resolve<Fn>("glBindTexture");
    if (!xphost::checkThread("glBindTexture") || !real) { return; }
    real(target, texture);
}

GLAPI void GLAPIENTRY glActiveTexture(GLenum texture) {
    using Fn = void (*)(GLenum texture);
    static const Fn real = resolve<Fn>("glActiveTexture");
    if (!xphost::checkThread("glActiveTexture") || !real) { return; }
    real(texture);
}

GLAPI void GLAPIENTRY glTexParameteri(GLenum target, GLenum pname, GLint param) {
    using Fn = void (*)(GLenum target, GLenum pname, GLint param);
    static const Fn real = resolve<Fn>("glTexParameteri");
    if (!xphost::checkThread("glTexParameteri") || !real) { return; }
    real(target, pname, param);
}

GLAPI void GLAPIENTRY glTexParameterf(GLenum target, GLenum pname, GLfloat param) {
    using Fn = void (*)(GLenum target, GLenum pname, GLfloat param);
    static const Fn real = resolve<Fn>("glTexParameterf");
    if (!xphost::checkThread("glTexParameterf") || !real) { return; }
    real(target, pname, param);
}

GLAPI void GLAPIENTRY glTexEnvi(GLenum target, GLenum pname, GLint param) {
    using Fn = void (*)(GLenum target, GLenum pname, GLint param);
    static const Fn real = resolve<Fn>("glTexEnvi");
    if (!xphost::checkThread("glTexEnvi") || !real) { return; }
    real(target, pname, param);
}

GLAPI void GLAPIENTRY glTexEnvf(GLenum target, GLenum pname, GLfloat param) {
    using Fn = void (*)(GLenum target, GLenum pname, GLfloat param);
    static const Fn real = resolve<Fn>("glTexEnvf");
    if (!xphost::checkThread("glTexEnvf") || !real) { return; }
    real(target, pname, param);
}

GLAPI void GLAPIENTRY glPixelStorei(GLenum pname, GLint param) {
    using Fn = void (*)(GLenum pname, GLint param);
    static const Fn real = resolve<Fn>("glPixelStorei");
    if (!xphost::checkThread("glPixelStorei") || !real) { return; }
    real(pname, param);
}

GLAPI void GLAPIENTRY glTexImage2D(GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height, GLint border, GLenum format, GLenum type, const GLvoid* pixels) {
    using Fn = void (*)(GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height, GLint border, GLenum format, GLenum type, const GLvoid* pixels);
    static const Fn real = resolve<Fn>("glTexImage2D");
    if (!xphost::checkThread("glTexImage2D") || !real) { return; }
    real(target, level, internalFormat, width, height, border, format, type, pixels);
}

GLAPI void GLAPIENTRY glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, const GLvoid* pixels) {
    using Fn = void (*)(GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, const GLvoid* pixels);
    static const Fn real = resolve<Fn>("glTexSubImage2D");
    if (!xphost::checkThread("glTexSubImage2D") || !real) { return; }
    real(target, level, x, y, width, height, format, type, pixels);
}

GLAPI void GLAPIENTRY glReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, GLvoid* pixels) {
    using Fn = void (*)(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, GLvoid* pixels);
    static const Fn real = resolve<Fn>("glReadPixels");
    if (!xphost::checkThread("glReadPixels") || !real) { return; }
    real(x, y, width, height, format, type, pixels);
}

GLAPI void GLAPIENTRY glVertexPointer(GLint size, GLenum type, GLsizei stride, const GLvoid* ptr) {
    using Fn = void (*)(GLint size, GLenum type, GLsizei stride, const GLvoid* ptr);
    static const Fn real = resolve<Fn>("glVertexPointer");
    if (!xphost::checkThread("glVertexPointer") || !real) { return; }
    real(size, type, stride, ptr);
}

GLAPI void GLAPIENTRY glTexCoordPointer(GLint size, GLenum type, GLsizei stride, const GLvoid* ptr) {
    using Fn = void (*)(GLint size, GLenum type, GLsizei stride, const GLvoid* ptr);
    static const Fn real = resolve<Fn>("glTexCoordPointer");
    if (!xphost::checkThread("glTexCoordPointer") || !real) { return; }
    real(size, type, stride, ptr);
}

GLAPI void GLAPIENTRY glColorPointer(GLint size, GLenum type, GLsizei stride, const GLvoid* ptr) {
    using Fn = void (*)(GLint size, GLenum type, GLsizei stride, const GLvoid* ptr);
    static const Fn real = resolve<Fn>("glColorPointer");
    if (!xphost::checkThread("glColorPointer") || !real) { return; }
    real(size, type, stride, ptr);
}

GLAPI void GLAPIENTRY glDrawElements(GLenum mode, GLsizei count, GLenum type, const GLvoid* indices) {
    using Fn = void (*)(GLenum mode, GLsizei count, GLenum type, const GLvoid* indices);
    static const Fn real = resolve<Fn>("glDrawElements");
    if (!xphost::checkThread("glDrawElements") || !real) { return; }
    real(mode, count, type, indices);
}

GLAPI void GLAPIENTRY glDrawArrays(GLenum mode, GLint first, GLsizei count) {
    using Fn = void (*)(GLenum mode, GLint first, GLsizei count);
    static const Fn real = resolve<Fn>("glDrawArrays");
    if (!xphost::checkThread("glDrawArrays") || !real) { return; }
    real(mode, first, count);
}

GLAPI void GLAPIENTRY glStencilFunc(GLenum func, GLint ref, GLuint mask) {
    using Fn = void (*)(GLenum func, GLint ref, GLuint mask);
    static const Fn real = resolve<Fn>("glStencilFunc");
    if (!xphost::checkThread("glStencilFunc") || !real) { return; }
    real(func, ref, mask);
}

GLAPI void GLAPIENTRY glColorMask(GLboolean r, GLboolean g, GLboolean b, GLboolean a) {
    using Fn = void (*)(GLboolean r, GLboolean g, GLboolean b, GLboolean a);
    static const Fn real = resolve<Fn>("glColorMask");
    if (!xphost::checkThread("glColorMask") || !real) { return; }
    real(r, g, b, a);
}

GLAPI void GLAPIENTRY glCullFace(GLenum mode) {
    using Fn = void (*)(GLenum mode);
    static const Fn real = resolve<Fn>("glCullFace");
    if (!xphost::checkThread("glCullFace") || !real) { return; }
    real(mode);
}

GLAPI void GLAPIENTRY glPolygonMode(GLenum face, GLenum mode) {
    using Fn = void (*)(GLenum face, GLenum mode);
    static const Fn real = resolve<Fn>("glPolygonMode");
    if (!xphost::checkThread("glPolygonMode") || !real) { return; }
    real(face, mode);
}

}  // extern "C"
