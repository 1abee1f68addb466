#include "platform/quartzcore/transform3d.h"

#include <cmath>

namespace quellaro {

namespace {

struct Row {
  double m1, m2, m3, m4;
};

Row times(const Row& row, const CATransform3D& t) {
  return {row.m1 * t.m11 + row.m2 * t.m21 + row.m3 * t.m31 + row.m4 * t.m41,
          row.m1 * t.m12 + row.m2 * t.m22 + row.m3 * t.m32 + row.m4 * t.m42,
          row.m1 * t.m13 + row.m2 * t.m23 + row.m3 * t.m33 + row.m4 * t.m43,
          row.m1 * t.m14 + row.m2 * t.m24 + row.m3 * t.m34 + row.m4 * t.m44};
}

}  // namespace

CATransform3D CATransform3DConcat(const CATransform3D& a, const CATransform3D& b) {
  const Row first = times({a.m11, a.m12, a.m13, a.m14}, b);
  const Row second = times({a.m21, a.m22, a.m23, a.m24}, b);
  const Row third = times({a.m31, a.m32, a.m33, a.m34}, b);
  const Row fourth = times({a.m41, a.m42, a.m43, a.m44}, b);
  return {first.m1, first.m2, first.m3, first.m4, second.m1, second.m2, second.m3, second.m4,
          third.m1, third.m2, third.m3, third.m4, fourth.m1, fourth.m2, fourth.m3, fourth.m4};
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
