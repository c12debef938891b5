// Every operation exists for every element type: it gives its value or refuses with its exact error.
#include "numeric/squarematrix.h"
#include "tests/numeric/support.h"

#include <cmath>
#include <functional>
#include <map>
#include <typeindex>

namespace
{
template <class T> std::string nameOf()
{
  static const std::map<std::type_index, std::string> names = {{typeid(bool), "bool"},
                                                               {typeid(char), "char"},
                                                               {typeid(unsigned char), "unsigned char"},
                                                               {typeid(short), "short"},
                                                               {typeid(int), "int"},
                                                               {typeid(unsigned short), "unsigned short"},
                                                               {typeid(float), "float"},
                                                               {typeid(double), "double"},
                                                               {typeid(unsigned int), "unsigned int"},
                                                               {typeid(long double), "long double"}};
  return names.at(typeid(T));
}

/// "T Vector<T>::mean()" becomes "int Vector<int>::mean()": the marker is T between characters that are no letters.
template <class T> std::string concrete(std::string signature)
{
  for (const char* context : {"<T>", "(T,", "(T)", " T,", " T)", " T&"})
    for (std::size_t at; (at = signature.find(context)) != std::string::npos;)
      signature.replace(at + 1, 1, nameOf<T>());
  return signature[0] == 'T' ? nameOf<T>() + signature.substr(1) : signature;
}

struct Refusal
{
  const char* signature;
  std::function<void()> call;
};

template <class T> void expectRefusals(const std::vector<Refusal>& refusals)
{
  for (const Refusal& refusal : refusals)
  {
    SCOPED_TRACE(refusal.signature);
    expectError<TypeError>("Method not available for type '" + nameOf<T>() + "'", refusal.call,
                           concrete<T>(refusal.signature));
  }
}

/// Whether 1 is its own opposite, as true is.
template <class T> constexpr bool isItsOwnOpposite = std::is_same_v<T, bool>;

template <class T> constexpr bool isRefusedOverall = OneOf<T, bool, short, unsigned short, int, unsigned int>;
} // namespace

template <class T> class EveryElementType : public ::testing::Test
{
};
TYPED_TEST_SUITE(EveryElementType, ElementTypes);

TYPED_TEST(EveryElementType, FillsAndCutsVectors)
{
  using T = TypeParam;
  const auto of = [](std::initializer_list<int> values) { return vectorOf<T>(values); };
  Vector<T> v(3);
  v.fill(T(1));
  EXPECT_EQ(v, of({1, 1, 1}));
  v.setZeros();
  EXPECT_EQ(v, of({0, 0, 0}));
  v.setOnes(2);
  EXPECT_EQ(v, of({1, 1}));
  v.setZeros(4);
  EXPECT_EQ(v, of({0, 0, 0, 0}));
  v.setOnes();
  EXPECT_EQ(v, of({1, 1, 1, 1}));
  v.setCanonical(2);
  EXPECT_EQ(v, of({0, 0, 1, 0}));
  v.setSequence(T(0));
  EXPECT_EQ(v, of({0, 1, 2, 3}));
  v.setSequence(T(5), T(2));
  EXPECT_EQ(v, of({5, 7, 9, 11}));
  v.apply([](T x) { return static_cast<T>(x + T(1)); });
  EXPECT_EQ(v, of({6, 8, 10, 12}));
  EXPECT_EQ(v.copy(1, 2), of({8, 10}));
  EXPECT_EQ(v.copyFrom(3), of({12}));
  EXPECT_EQ(v.copyUntil(1), of({6, 8}));
  v = of({1, 0, 1});
  v.paste(1, of({1, 0}));
  EXPECT_EQ(v, of({1, 1, 0}));
  v.append(T(1));
  v.append(of({0, 0}));
  v.prepend(of({0, 1}));
  EXPECT_EQ(v, of({0, 1, 1, 1, 0, 1, 0, 0}));
}

TYPED_TEST(EveryElementType, OrdersVectors)
{
  using T = TypeParam;
  const auto of = [](std::initializer_list<int> values) { return vectorOf<T>(values); };
  Vector<T> v = of({1, 0, 1, 0, 0});
  EXPECT_EQ(v.find(T(0)), 1);
  v.sort();
  EXPECT_EQ(v, of({0, 0, 0, 1, 1}));
  EXPECT_TRUE(v.isIncreasing() && !v.isDecreasing() && !v.isConstant() && !v.isSymmetrical());
  v.reverse();
  EXPECT_EQ(v, of({1, 1, 0, 0, 0}));
  EXPECT_TRUE(v.isDecreasing() && !v.isIncreasing());
  v.circShift();
  EXPECT_EQ(v, of({0, 1, 1, 0, 0}));
  EXPECT_FALSE(v.isSymmetrical());
  EXPECT_TRUE(of({0, 1, 1, 0}).isSymmetrical() && of({1, 1}).isConstant());
  EXPECT_TRUE(of({1, 0, -1}).isAntiSymmetrical());
  EXPECT_EQ(of({1, 1, -1}).isAntiSymmetrical(), isItsOwnOpposite<T>);
  RandomGenerator generator(5);
  const Vector<int> permutation = v.shuffle(generator);
  const Vector<T> shuffled = v;
  v.unshuffle(permutation);
  EXPECT_EQ(v, of({0, 1, 1, 0, 0}));
  for (int i = 0; i < 5; ++i) EXPECT_EQ(shuffled[i], v[permutation[i]]);
}

TYPED_TEST(EveryElementType, ComputesOrRefusesStatistics)
{
  using T = TypeParam;
  const auto of = [](std::initializer_list<int> values) { return vectorOf<T>(values); };
  const Vector<T> v = of({1, 0, 1});
  EXPECT_EQ(v.min(), T(0));
  EXPECT_EQ(v.max(), T(1));
  EXPECT_EQ(v.range(), of({0, 1}));
  EXPECT_EQ(v.minPos(), 1);
  EXPECT_EQ(v.maxPos(), 0);
  EXPECT_EQ(v.sum(), T(2));
  EXPECT_EQ(v.median(), T(1));
  EXPECT_EQ(v.prod(), T(0));
  EXPECT_EQ(v.csum(), of({1, 1, 2}));
  EXPECT_EQ(v.cprod(), of({1, 0, 0}));
  EXPECT_EQ(v.diff(1), of({-1, 1, 0}));
  EXPECT_EQ(of({0, 0, 1}).percentile(100), T(1));
  EXPECT_EQ(v.histogram(T(0), T(1), 2), (Vector<unsigned int>{1, 2}));
  EXPECT_EQ(v.histogram(T(0), T(1), 2, of({1, 1, 0})), of({1, 1}));
  EXPECT_EQ(v.numbers(), v);
  if constexpr (std::is_integral_v<T>)
    expectRefusals<T>({{"T Vector<T>::mean()", [&] { v.mean(); }},
                       {"T Vector<T>::sse()", [&] { v.sse(); }},
                       {"T Vector<T>::var()", [&] { v.var(); }},
                       {"T Vector<T>::std()", [&] { v.std(); }},
                       {"T Vector<T>::mad()", [&] { v.mad(); }},
                       {"T Vector<T>::sem(bool)", [&] { v.sem(true); }}});
  else
  {
    const T tolerance = 4 * std::numeric_limits<T>::epsilon();
    EXPECT_NEAR(v.mean(), T(2) / 3, tolerance);
    EXPECT_NEAR(v.sse(), T(2) / 3, tolerance);
    EXPECT_NEAR(v.var(), T(2) / 9, tolerance);
    EXPECT_NEAR(v.std(), std::sqrt(T(2)) / 3, tolerance);
    EXPECT_EQ(v.mad(), T(0));
    EXPECT_NEAR(v.sem(true), T(1) / 3, tolerance);
    EXPECT_NEAR(v.sem(false), std::sqrt(T(2) / 3) / 3, tolerance);
  }
}

TYPED_TEST(EveryElementType, ComputesOrRefusesAlgebra)
{
  using T = TypeParam;
  const auto of = [](std::initializer_list<int> values) { return vectorOf<T>(values); };
  const Vector<T> x = of({1, 0, 1}), y = of({1, 1, 0}), ones = of({1, 1, 1});
  EXPECT_EQ(x + y, of({2, 1, 1}));
  EXPECT_EQ(x - y, of({0, -1, 1}));
  EXPECT_EQ(x * y, of({1, 0, 0}));
  EXPECT_EQ(x / ones, x);
  EXPECT_EQ(x + T(1), of({2, 1, 2}));
  EXPECT_EQ(x - T(1), of({0, -1, 0}));
  EXPECT_EQ(T(1) * x, x);
  EXPECT_EQ(x / T(1), x);
  EXPECT_EQ(-x, of({-1, 0, -1}));
  EXPECT_EQ(x.pointwiseProduct(y), of({1, 0, 0}));
  EXPECT_EQ(x.scalarProduct(ones), T(2));
  EXPECT_EQ(x.vectorProduct(y), of({-1, 1, 1}));
  EXPECT_EQ(x.outerProduct(of({1, 1})), matrixOf<T>(2, {1, 1, 0, 0, 1, 1}));
  EXPECT_EQ(x.snorm(), T(2));
  EXPECT_EQ(x.sdistance(y), T(2));
  EXPECT_EQ(x.manhattanDistance(y), T(2));
  EXPECT_EQ(x.angle(x), T(0));
  EXPECT_EQ(of({0, 1, 1}).closestAxis(), 1);
  EXPECT_EQ(x.corr(of({1, 0, 0})), of({0, 1, 0}));
  EXPECT_EQ(x.conv(of({1, 0, 0})), of({0, 1, 0}));
  EXPECT_EQ(of({1, 0, 0}).corr(of({1, 0, 0})), of({0, 1, 0}));
  EXPECT_EQ(of({1, 0, 0}).conv(of({1, 0, 0})), of({0, 0, 0}));
  EXPECT_EQ(x.corr(ones, of({0, 1, 1})), of({0, 1, 1}));
  EXPECT_EQ(x.conv(ones, of({0, 1, 1})), of({0, 1, 1}));
  EXPECT_EQ(Vector<T>::epsilon(), 1e-15);
  Vector<T> v = of({0, 1, 0});
  if constexpr (std::is_integral_v<T>)
  {
    expectRefusals<T>({{"T Vector<T>::norm()", [&] { v.norm(); }},
                       {"void Vector<T>::normalize()", [&] { v.normalize(); }},
                       {"T Vector<T>::distance(const Vector<T>&)", [&] { v.distance(x); }},
                       {"Vector<T> Vector<T>::householderVector()", [&] { v.householderVector(); }}});
    expectError<MathError>("Integer division by zero", [&] { x / y; });
  }
  else
  {
    EXPECT_EQ(v.norm(), T(1));
    EXPECT_EQ(v.distance(of({3, 1, 4})), T(5));
    EXPECT_EQ(of({3, 0, 4}).householderVector(), (Vector<T>{1, 0, T(0.5)}));
    v = of({0, 8, 0});
    v.normalize();
    EXPECT_EQ(v, of({0, 1, 0}));
    EXPECT_TRUE(std::isinf((x / y)[2]));
  }
}

TYPED_TEST(EveryElementType, HandlesMatrices)
{
  using T = TypeParam;
  const auto of = [](std::initializer_list<int> values) { return vectorOf<T>(values); };
  const auto rows2 = [](std::initializer_list<int> values) { return matrixOf<T>(2, values); };
  const Matrix<T> a = rows2({1, 0, 1, 1}), b = rows2({0, 1, 1, 1});
  EXPECT_EQ(a.getRow(0), of({1, 0}));
  EXPECT_EQ(a.getColumn(1), of({0, 1}));
  EXPECT_EQ(a.cat(), of({1, 0, 1, 1}));
  EXPECT_EQ(a.transpose(), rows2({1, 1, 0, 1}));
  EXPECT_EQ(a + b, rows2({1, 1, 2, 2}));
  EXPECT_EQ(a - b, rows2({1, -1, 0, 0}));
  EXPECT_EQ(a * b, rows2({0, 1, 1, 2}));
  EXPECT_EQ(a.pointwiseProduct(b), rows2({0, 0, 1, 1}));
  EXPECT_EQ(a / rows2({1, 1, 1, 1}), a);
  EXPECT_EQ(a + T(1), rows2({2, 1, 2, 2}));
  EXPECT_EQ(a - T(1), rows2({0, -1, 0, 0}));
  EXPECT_EQ((T(1) * a) / T(1), a);
  EXPECT_EQ(-a, rows2({-1, 0, -1, -1}));
  EXPECT_EQ(a * of({1, 1}), of({1, 2}));
  EXPECT_EQ(a.copy(1, 0, 1, 2), rows2({1, 1}));
  EXPECT_EQ(Matrix<T>(of({1, 0}), true), rows2({1, 0}));
  EXPECT_EQ(Matrix<T>(of({1, 0}), false), matrixOf<T>(1, {1, 0}));
  Matrix<T> m = a;
  m.setRow(0, of({0, 0}));
  m.setColumn(1, of({1, 0}));
  EXPECT_EQ(m, rows2({0, 1, 1, 0}));
  m.paste(1, 1, matrixOf<T>(1, {1}));
  m.swapRows(0, 1);
  EXPECT_EQ(m, rows2({1, 1, 0, 1}));
  m.sortRows(0);
  EXPECT_EQ(m, rows2({0, 1, 1, 1}));
  m.sortRows(0, 1, 1);
  m.leftGivensRotate(0, 1, T(0), T(1)); // row 0 becomes row 1, row 1 becomes minus row 0
  EXPECT_EQ(m, rows2({1, 1, 0, -1}));
  m.rightGivensRotate(0, 1, T(0), T(1));
  EXPECT_EQ(m, rows2({1, -1, -1, 0}));
  m.leftHouseholderTransform(of({1, 0})); // mirrors the first axis
  EXPECT_EQ(m, rows2({-1, 1, -1, 0}));
  m.rightHouseholderTransform(of({1}), 0, 1);
  EXPECT_EQ(m, rows2({-1, -1, -1, 0}));
}

TYPED_TEST(EveryElementType, ComputesOrRefusesOnMatrices)
{
  using T = TypeParam;
  const auto of = [](std::initializer_list<int> values) { return vectorOf<T>(values); };
  const Matrix<T> a = matrixOf<T>(2, {1, 0, 1, 1});
  EXPECT_EQ(a.min(), of({0, 1}));
  EXPECT_EQ(a.max(), of({1, 1}));
  EXPECT_EQ(a.sum(), of({1, 2}));
  EXPECT_EQ(a.prod(), of({0, 1}));
  EXPECT_EQ(a.range(), of({0, 1}));
  EXPECT_EQ(a.histogram(T(0), T(1), 2), (Vector<unsigned int>{1, 3}));
  Matrix<T> u, v;
  T c, s;
  if constexpr (std::is_integral_v<T>)
    expectRefusals<T>(
        {{"T Vector<T>::mean()", [&] { a.mean(); }},
         {"T Vector<T>::var()", [&] { a.var(); }},
         {"T Vector<T>::std()", [&] { a.std(); }},
         {"Vector<T> Matrix<T>::svd(Matrix<T>&, Matrix<T>&)", [&] { a.svd(u, v); }},
         {"Vector<T> Matrix<T>::svd(Matrix<T>&, Matrix<T>&)",
          [&] {
            a.solve(of({1, 1}));
          }},
         {"Matrix<T> Matrix<T>::householderBidiag(Matrix<T>&, Matrix<T>&)", [&] { a.householderBidiag(u, v); }}});
  else
  {
    EXPECT_EQ(a.mean(), (Vector<T>{T(0.5), 1}));
    EXPECT_EQ(a.var(), (Vector<T>{T(0.25), 0}));
    EXPECT_EQ(a.std(), (Vector<T>{T(0.5), 0}));
    EXPECT_LT(a.solve(of({2, 5})).distance(of({2, 3})), 20 * std::numeric_limits<T>::epsilon());
  }
  if constexpr (isRefusedOverall<T>)
    expectRefusals<T>({{"T Matrix<T>::mean2()", [&] { a.mean2(); }},
                       {"T Matrix<T>::var2()", [&] { a.var2(); }},
                       {"T Matrix<T>::std2()", [&] { a.std2(); }},
                       {"Matrix<T> Matrix<T>::pinverse()", [&] { a.pinverse(); }},
                       {"void Matrix<T>::givens(T, T, T&, T&)", [&] { Matrix<T>::givens(T(0), T(1), c, s); }}});
  else
  {
    const Matrix<T> greys = matrixOf<T>(2, {10, 20, 20, 30});
    EXPECT_EQ(greys.mean2(), T(20));
    EXPECT_EQ(greys.var2(), T(50));
    EXPECT_EQ(greys.std2(), static_cast<T>(std::sqrt(50.0L)));
    Matrix<T>::givens(T(0), T(5), c, s);
    EXPECT_TRUE(c == T(0) && s == T(1));
  }
}

TYPED_TEST(EveryElementType, HandlesSquareMatrices)
{
  using T = TypeParam;
  const auto of = [](std::initializer_list<int> values) { return vectorOf<T>(values); };
  const auto rows3 = [](std::initializer_list<int> values) { return SquareMatrix<T>(matrixOf<T>(3, values)); };
  SquareMatrix<T> m(3);
  m.setIdentity();
  EXPECT_EQ(m, rows3({1, 0, 0, 0, 1, 0, 0, 0, 1}));
  EXPECT_TRUE(m.isSymmetrical() && m.isRHSystem());
  EXPECT_EQ(m.trace(), T(3));
  m.swapRows(0, 1);
  EXPECT_FALSE(m.isRHSystem());
  m.setDiagonal(T(7));
  EXPECT_EQ(m, rows3({7, 0, 0, 0, 7, 0, 0, 0, 7}));
  m.setDiagonal(of({1, 2, 3}));
  EXPECT_EQ(m, rows3({1, 0, 0, 0, 2, 0, 0, 0, 3}));
  m.setUpperBidiagonal(of({1, 2, 3}), of({4, 5}));
  EXPECT_EQ(m, rows3({1, 4, 0, 0, 2, 5, 0, 0, 3}));
  m.setLowerBidiagonal(of({1, 2, 3}), of({4, 5}));
  EXPECT_EQ(m, rows3({1, 0, 0, 4, 2, 0, 0, 5, 3}));
  m.setTridiagonal(of({4, 5}), of({1, 2, 3}), of({6, 7}));
  EXPECT_EQ(m, rows3({1, 6, 0, 4, 2, 7, 0, 5, 3}));
  EXPECT_EQ(m.diagonal(), of({1, 2, 3}));
  EXPECT_EQ(m.upperDiagonal(), of({6, 7}));
  EXPECT_EQ(m.lowerDiagonal(), of({4, 5}));
  m.pasteDiagonal(of({0, 0, 0}));
  m.pasteUpperDiagonal(of({1, 0}));
  m.pasteLowerDiagonal(of({-1, 0}));
  m.pasteUpperDiagonal2(of({1}));
  m.pasteLowerDiagonal2(of({-1}));
  EXPECT_EQ(m, rows3({0, 1, 1, -1, 0, 0, -1, 0, 0}));
  EXPECT_TRUE(m.isAntiSymmetrical());
  SquareMatrix<T> axes(3);
  axes.setIdentity();
  EXPECT_EQ(axes.isAntiSymmetrical(), isItsOwnOpposite<T>);
  m = rows3({1, 0, 0, 0, 1, 0, 0, 0, 1});
  m.jacobiRotate(0, 1, axes); // there is nothing to rotate away
  EXPECT_EQ(m, rows3({1, 0, 0, 0, 1, 0, 0, 0, 1}));
  EXPECT_EQ(axes, m);
  m = rows3({1, 1, 0, 1, 1, 0, 0, 0, 1});
  m.jacobiRotate(0, 1, axes); // by 45 degrees
  EXPECT_EQ(m, rows3({0, 0, 0, 0, 2, 0, 0, 0, 1}));
  if constexpr (std::is_floating_point_v<T>)
  {
    const T r = std::sqrt(T(0.5));
    EXPECT_LT(largestDifference<T>(axes, {{r, r, 0}, {-r, r, 0}, {0, 0, 1}}), 4 * std::numeric_limits<T>::epsilon());
  }
  axes.setIdentity();
  Vector<T> values = of({0, 1, 0});
  SquareMatrix<T>::eigenSort(values, axes);
  EXPECT_EQ(values, of({1, 0, 0}));
  EXPECT_EQ(axes, rows3({0, 1, 0, 1, 0, 0, 0, 0, 1}));
}

TYPED_TEST(EveryElementType, SolvesOrRefusesSystems)
{
  using T = TypeParam;
  SquareMatrix<T> m = matrixOf<T>(3, {2, 1, 0, 1, 2, 0, 0, 0, 1}), vectors;
  const Vector<T> b = vectorOf<T>({3, 3, 1}), ones = vectorOf<T>({1, 1, 1});
  Vector<T> values;
  Vector<int> permutation;
  if constexpr (std::is_integral_v<T>)
    expectRefusals<T>(
        {{"void SquareMatrix<T>::setHilbert(int)", [&] { m.setHilbert(2); }},
         {"int SquareMatrix<T>::luDecomp(Vector<int>&, T)", [&] { m.luDecomp(permutation); }},
         {"int SquareMatrix<T>::luDecomp(Vector<int>&, T)", [&] { m.det(); }},
         {"int SquareMatrix<T>::luDecomp(Vector<int>&, T)", [&] { m.inverse(); }},
         {"Vector<T> SquareMatrix<T>::luSolve(const Vector<T>&, const Vector<int>&)",
          [&] { m.luSolve(b, permutation); }},
         {"void SquareMatrix<T>::eigenJacobi(Vector<T>&, SquareMatrix<T>&, bool)",
          [&] { m.eigenJacobi(values, vectors, true); }},
         {"void SquareMatrix<T>::eigenJacobi(Vector<T>&, SquareMatrix<T>&, bool)", [&] { m.eigenValues(true); }},
         {"Vector<T> SquareMatrix<T>::tridiagSolve(const Vector<T>&)", [&] { m.tridiagSolve(b); }},
         {"Vector<T> SquareMatrix<T>::tridiagSolve(const Vector<T>&)", [&] { m.cyclicTridiagSolve(b); }},
         {"SquareMatrix<T> SquareMatrix<T>::tridiagInverse()", [&] { m.tridiagInverse(); }}});
  else
  {
    const T tolerance = 20 * std::numeric_limits<T>::epsilon();
    EXPECT_NEAR(m.det(), T(3), tolerance);
    EXPECT_LT(m.tridiagSolve(b).distance(ones), tolerance);
    EXPECT_LT(m.cyclicTridiagSolve(b).distance(ones), tolerance);
    EXPECT_LT((m.inverse() * b).distance(ones), tolerance);
    EXPECT_LT((m.tridiagInverse() * b).distance(ones), tolerance);
    EXPECT_LT(m.eigenValues(true).distance(vectorOf<T>({3, 1, 1})), tolerance);
    EXPECT_EQ(m.luDecomp(permutation), 1);
    EXPECT_LT(m.luSolve(b, permutation).distance(ones), tolerance);
    m.setHilbert(2);
    EXPECT_EQ(m.cat(), (Vector<T>{1, T(1) / 2, T(1) / 2, T(1) / 3}));
  }
}
