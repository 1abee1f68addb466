#include "platform/quartzcore/transform3d.h"

#include <cmath>

namespace quellaro {

CATransform3D CATransform3DConcat(const CATransform3D& a, const CATransform3D& b) {
  CATransform3D r;
  r.m11 = a.m11 * b.m11 + a.m12 * b.m21 + a.m13 * b.m31 + a.m14 * b.m41;
  r.m12 = a.m11 * b.m12 + a.m12 * b.m22 + a.m13 * b.m32 + a.m14 * b.m42;
  r.m13 = a.m11 * b.m13 + a.m12 * b.m23 + a.m13 * b.m33 + a.m14 * b.m43;
  r.m14 = a.m11 * b.m14 + a.m12 * b.m24 + a.m13 * b.m34 + a.m14 * b.m44;
  r.m21 = a.m21 * b.m11 + a.m22 * b.m21 + a.m23 * b.m31 + a.m24 * b.m41;
  r.m22 = a.m21 * b.m12 + a.m22 * b.m22 + a.m23 * b.m32 + a.m24 * b.m42;
  r.m23 = a.m21 * b.m13 + a.m22 * b.m23 + a.m23 * b.m33 + a.m24 * b.m43;
  r.m24 = a.m21 * b.m14 + a.m22 * b.m24 + a.m23 * b.m34 + a.m24 * b.m44;
  r.m31 = a.m31 * b.m11 + a.m32 * b.m21 + a.m33 * b.m31 + a.m34 * b.m41;
  r.m32 = a.m31 * b.m12 + a.m32 * b.m22 + a.m33 * b.m32 + a.m34 * b.m42;
  r.m33 = a.m31 * b.m13 + a.m32 * b.m23 + a.m33 * b.m33 + a.m34 * b.m43;
  r.m34 = a.m31 * b.m14 + a.m32 * b.m24 + a.m33 * b.m34 + a.m34 * b.m44;
  r.m41 = a.m41 * b.m11 + a.m42 * b.m21 + a.m43 * b.m31 + a.m44 * b.m41;
  r.m42 = a.m41 * b.m12 + a.m42 * b.m22 + a.m43 * b.m32 + a.m44 * b.m42;
  r.m43 = a.m41 * b.m13 + a.m42 * b.m23 + a.m43 * b.m33 + a.m44 * b.m43;
  r.m44 = a.m41 * b.m14 + a.m42 * b.m24 + a.m43 * b.m34 + a.m44 * b.m44;
  return r;
}

CATransform3D CATransform3DTranslate(const CATransform3D& t, double tx, double ty, double tz) {
  CATransform3D translation;
  translation.m41 = tx;
  translation.m42 = ty;
  translation.m43 = tz;
  return CATransform3DConcat(translation, t);
}

CATransform3D CATransform3DScale(const CATransform3D& t, double sx, double sy, double sz) {
  CATransform3D scale;
  scale.m11 = sx;
  scale.m22 = sy;
  scale.m33 = sz;
  return CATransform3DConcat(scale, t);
}

CATransform3D CATransform3DRotateZ(const CATransform3D& t, double angle) {
  CATransform3D rotation;
  rotation.m11 = rotation.m22 = std::cos(angle);
  rotation.m12 = std::sin(angle);
  rotation.m21 = -rotation.m12;
  return CATransform3DConcat(rotation, t);
}

CGPoint apply(const CATransform3D& t, CGPoint p) {
  return {p.x * t.m11 + p.y * t.m21 + t.m41, p.x * t.m12 + p.y * t.m22 + t.m42};
}

}  // namespace quellaro
