#pragma once

#include "platform/coregraphics/geometry.h"

namespace quellaro {

// 4x4, row vectors: a point (x, y, z, 1) is multiplied on the left, so translation lives in m41, m42, m43.
struct CATransform3D {
  double m11 = 1, m12 = 0, m13 = 0, m14 = 0;
  double m21 = 0, m22 = 1, m23 = 0, m24 = 0;
  double m31 = 0, m32 = 0, m33 = 1, m34 = 0;
  double m41 = 0, m42 = 0, m43 = 0, m44 = 1;
  friend bool operator==(const CATransform3D&, const CATransform3D&) = default;
};

inline constexpr CATransform3D CATransform3DIdentity{};

// a first, then b: the product a * b.
CATransform3D CATransform3DConcat(const CATransform3D& a, const CATransform3D& b);

// Each gives O * t: the new operation acts on coordinates before t does.
CATransform3D CATransform3DTranslate(const CATransform3D& t, double tx, double ty, double tz);
CATransform3D CATransform3DScale(const CATransform3D& t, double sx, double sy, double sz);
// About the z axis, in radians.
CATransform3D CATransform3DRotateZ(const CATransform3D& t, double angle);

// Where the point (x, y, 0) lands in the plane.
CGPoint apply(const CATransform3D& t, CGPoint point);

}  // namespace quellaro
