#pragma once

#include "geometry/curvecorrespondence.h"
#include "geometry/curvestack.h"
#include "geometry/curvestackcheck.h"
#include "geometry/curvestacktriangulationcontourtag.h"
#include "geometry/measuredcurve.h"
#include "geometry/triangulationcode.h"
#include "geometry/trimesh.h"

#include <memory>
#include <vector>

/// How two contours are joined; any other value joins nothing.
using CurveStackTriangulationMethod = int;

/// Joins the curves of a stack, level by level, into one triangulated surface.
///
/// A level is a run of curves at exactly one height; levels follow each other in stack order. The closed contours of a
/// stack run clockwise in the x-y plane for triangles that are seen from outside. The strips between open curves have
/// no closing edge, and open curves get no caps.
template <class T> class CurveStackTriangulation2
{
public:
  static constexpr CurveStackTriangulationMethod ganapathy = 0; ///< walk by normalised arc lengths
  static constexpr CurveStackTriangulationMethod optimal = 1;   ///< least sum of squared lengths between the curves

  void setMethod(CurveStackTriangulationMethod method) { _method = method; }
  /// Cost by which curves of two levels correspond, see meshCost(); 6 at first.
  void setCostCriterion(unsigned int criterion) { _costCriterion = criterion; }
  /// Begin caps on curves tagged Begin and end caps on curves tagged End.
  void setTriangulateCaps(bool caps) { _caps = caps; }
  /// Begin caps on all curves of the first level.
  void setTriangulateFirstCaps(bool caps) { _firstCaps = caps; }
  /// End caps on all curves of the last level.
  void setTriangulateLastCaps(bool caps) { _lastCaps = caps; }
  /// Whether the mesh gets normals at its vertices, as it does at first. Without them it takes little more than half
  /// the time.
  void setNormals(bool normals) { _normals = normals; }
  /// One tag per curve, in stack order; without tags every curve counts as None.
  void setContourTags(const Vector<CurveStackTriangulationContourTag>& tags) { _tags = tags; }

  /// What may not be meant as it is in a stack and in the number of tags; apply() takes it all but WrongTags.
  /// \throw SizeError  the curves are not in 3D
  std::vector<CurveStackFinding> check(const CurveStack<T>& stack) const
  {
    return checkCurveStack(stack, _tags.getSize());
  }

  /// Builds the mesh; the curves' vertices are added to it in the order in which the curves are met.
  ///
  /// Degenerate curves are left out before levels are formed, see getIgnoredCurves().
  /// After an error the mesh is empty.
  /// \throw SizeError   the curves are not in 3D, or there are tags but not one per curve
  void apply(const CurveStack<T>& stack);

  /// The mesh of the last apply().
  const TriMesh<T>& getTriMesh() const { return _mesh; }

  /// True for a curve without extent, which cannot be joined: fewer than three vertices (two for an open curve), or a
  /// length that is 0 or not finite.
  static bool isDegenerate(const Curve<T>& curve);
  /// The numbers of the degenerate curves that the last apply() left out.
  const std::vector<int>& getIgnoredCurves() const { return _ignoredCurves; }

private:
  /// A curve whose vertices are in the mesh from index `offset` on.
  struct MeshCurve
  {
    const Curve<T>* curve;
    std::shared_ptr<const MeasuredCurve<T>> measured;
    CurveStackTriangulationContourTag tag;
    int offset = 0;
    bool isClosed = false;   // has got its end cap
    bool isReversed = false; // an open curve that is walked from its end
  };
  using Level = std::vector<MeshCurve>;

  static bool isDegenerate(const MeasuredCurve<T>& curve);
  void build(const CurveStack<T>& stack);
  std::vector<Level> levels(const CurveStack<T>& stack);
  Level firstLowerLevel(const Level& level);
  Level upperLevel(const Level& level);
  Level nextLowerLevel(const Level& level, const Level& upper);
  template <class IsTaken, class IsCapped>
  Level addToMesh(const Level& level, IsTaken isTaken, IsCapped isCapped, bool isEndCap);
  void localTriangulation(Level& lower, Level& upper);
  std::vector<CurveGroup> findCurveCorrespondances(const Level& lower, const Level& upper) const;
  /// What one side of a group shows to the other one: its only curve, or the contour into which its curves merge.
  struct Seam
  {
    std::shared_ptr<const MeasuredCurve<T>> measured;
    std::vector<int> indexes; // in the mesh, of the curve's vertices

    const Curve<T>& curve() const { return measured->getCurve(); }
  };
  Seam seamOf(Level& level, std::vector<int>& members, T otherHeight);
  /// Joins several closed curves to one contour between their height and the other one.
  Seam junctionTriangulation(const Level& level, const std::vector<int>& members, T otherHeight);
  /// The convex outline of a merged contour.
  static Seam hullOf(const Seam& merged);
  /// Adds the triangles that fill a merged contour up to its convex outline.
  void fillPockets(const Seam& merged, const Seam& hull, bool isUpwards);
  void fillPocket(const Seam& merged, int first, int last, bool isUpwards);
  void joinBranches(Seam below, Seam above, const CurveGroup& group);
  /// The open curves of a group one behind the other, each walked from the end that is closer to those before.
  static void chainOpenCurves(Level& level, std::vector<int>& members);
  std::vector<int> appendToMesh(const Curve<T>& curve);
  static Seam seamOfOpenCurves(const Level& level, const std::vector<int>& members);
  /// Adds the strip between two sequences of mesh vertices, which the steps walk along; they start again from the
  /// front behind their ends.
  void addStrip(const std::vector<int>& a, const std::vector<int>& b, const TriangulationCode& code, bool isUpwards);
  void computeMeshBetweenTwoCurves(const Seam& a, const Seam& b);
  TriangulationCode computeTriangulationCode(const Seam& a, const Seam& b) const;
  void appendCurveTriangulation(const MeshCurve& curve, bool isEndCap);

  CurveStackTriangulationMethod _method = ganapathy;
  unsigned int _costCriterion = 6;
  bool _caps = false;
  bool _firstCaps = false;
  bool _lastCaps = false;
  bool _normals = true;
  bool _descending = false; // the last level lies below the first
  Vector<CurveStackTriangulationContourTag> _tags;
  TriMesh<T> _mesh;
  std::vector<int> _ignoredCurves;
};

GEOMETRY_EXTERN_TEMPLATE_REAL(CurveStackTriangulation2)
