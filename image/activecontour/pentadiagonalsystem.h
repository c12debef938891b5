#pragma once

#include <array>
#include <vector>

/// The linear system (I + a D1'D1 + b D2'D2) x = r of the vertices along a curve, where D1 and D2 are their first and
/// second differences: symmetric, positive definite, five diagonals, cyclic for a closed curve. An open curve has free
/// ends.
///
/// Factorised once into L D L', each solution then takes time linear in the number of vertices. The last two vertices
/// of a closed curve border the band of the others and are eliminated by their Schur complement.
/// Source: Golub and Van Loan, Matrix Computations, section 4.3.
class PentadiagonalSystem
{
public:
  static constexpr int fewest = 6; ///< vertices

  /// For at least `fewest` vertices and weights a and b that are not negative.
  void factorise(int numVertices, bool isClosed, double a, double b);
  int getNumVertices() const { return _numVertices; }

  /// Replaces the right sides of both coordinates, x and y of one vertex after the other, by the solutions.
  void solve(double* points) const;

private:
  /// Of the band matrix: the diagonal, and those beside it.
  struct Diagonals
  {
    std::vector<double> d, e, f;
  };

  Diagonals assembled(bool isClosed, double a, double b) const;
  void factoriseBand(const Diagonals& matrix);
  void eliminateBorder(const Diagonals& matrix);
  void solveBand(double* points) const;
  double borderProduct(const double* points, int border, int coordinate) const;

  int _numVertices = 0;
  int _bandSize = 0;                     // of the vertices that the band holds
  std::vector<double> _inverseD;         // of D
  std::vector<double> _l1, _l2;          // L(i + 1, i), L(i + 2, i)
  std::vector<double> _w;                // the band's solutions for the columns of the border, x and y
  double _e = 0, _f = 0;                 // of the border
  std::array<double, 3> _inverseSchur{}; // of a symmetric 2 x 2 matrix
};
