#include "numeric/fouriertransform.h"

#include <algorithm>
#include <cmath>
#include <fftw3.h>
#include <memory>
#include <mutex>
#include <new>
#include <optional>

namespace
{
/// The FFTW functions of one precision.
template <class T> struct Fftw;

#define NUMERIC_FFTW(T, PREFIX)                                                                                        \
  template <> struct Fftw<T>                                                                                           \
  {                                                                                                                    \
    using Complex = PREFIX##_complex;                                                                                  \
    using Plan = PREFIX##_plan;                                                                                        \
    static constexpr auto allocate = PREFIX##_alloc_complex;                                                           \
    static constexpr auto free = PREFIX##_free;                                                                        \
    static constexpr auto plan1D = PREFIX##_plan_dft_1d;                                                               \
    static constexpr auto plan2D = PREFIX##_plan_dft_2d;                                                               \
    static constexpr auto execute = PREFIX##_execute;                                                                  \
    static constexpr auto destroy = PREFIX##_destroy_plan;                                                             \
  };

NUMERIC_FFTW(float, fftwf)
NUMERIC_FFTW(double, fftw)
NUMERIC_FFTW(long double, fftwl)

/// FFTW's planner is shared by all plans of a precision and may serve one thread at a time only.
template <class T> std::mutex& plannerMutex()
{
  static std::mutex mutex;
  return mutex;
}

/// A block of complex numbers from FFTW's allocator.
template <class T> class ComplexBuffer
{
public:
  explicit ComplexBuffer(std::size_t size) : _size(size), _data(Fftw<T>::allocate(size))
  {
    if (!_data) throw std::bad_alloc();
  }
  ComplexBuffer(const ComplexBuffer&) = delete;
  ComplexBuffer& operator=(const ComplexBuffer&) = delete;
  ~ComplexBuffer() { Fftw<T>::free(_data); }

  typename Fftw<T>::Complex* data() { return _data; }

  void read(const T* re, const T* im)
  {
    for (std::size_t i = 0; i < _size; ++i)
    {
      _data[i][0] = re[i];
      _data[i][1] = im[i];
    }
  }

  void write(T* re, T* im) const
  {
    for (std::size_t i = 0; i < _size; ++i)
    {
      re[i] = _data[i][0];
      im[i] = _data[i][1];
    }
  }

private:
  std::size_t _size;
  typename Fftw<T>::Complex* _data;
};

/// The plan of a transform in place.
template <class T> class Plan
{
public:
  template <class MakePlan> explicit Plan(const MakePlan& makePlan)
  {
    const std::lock_guard lock(plannerMutex<T>());
    _plan = makePlan();
    if (!_plan) throw MathError("Plan<T>::Plan(const MakePlan&)", "This Fourier transform cannot be planned");
  }
  Plan(const Plan&) = delete;
  Plan& operator=(const Plan&) = delete;
  ~Plan()
  {
    const std::lock_guard lock(plannerMutex<T>());
    Fftw<T>::destroy(_plan);
  }

  void execute() const { Fftw<T>::execute(_plan); }

private:
  typename Fftw<T>::Plan _plan;
};

/// A transform of one length and direction, ready to be run.
template <class T> class Transform1D
{
public:
  Transform1D(int size, int sign)
    : _size(size),
      _buffer(static_cast<std::size_t>(size)),
      _plan([&] { return Fftw<T>::plan1D(size, _buffer.data(), _buffer.data(), sign, FFTW_ESTIMATE); })
  {
  }

  int getSize() const { return _size; }
  void run(Vector<T>& re, Vector<T>& im)
  {
    _buffer.read(re.data(), im.data());
    _plan.execute();
    _buffer.write(re.data(), im.data());
  }

private:
  int _size;
  ComplexBuffer<T> _buffer;
  Plan<T> _plan;
};

/// Planning a short transform takes longer than running it: each thread keeps the last one of each direction.
template <class T> void transform(Vector<T>& re, Vector<T>& im, int sign)
{
  constexpr int greatestKeptSize = 1 << 16;
  const int size = re.getSize();
  if (size == 0) return;
  if (size > greatestKeptSize) return Transform1D<T>(size, sign).run(re, im);
  thread_local std::optional<Transform1D<T>> kept[2];
  std::optional<Transform1D<T>>& transform1D = kept[sign == FFTW_FORWARD ? 0 : 1];
  if (!transform1D || transform1D->getSize() != size) transform1D.emplace(size, sign);
  transform1D->run(re, im);
}

template <class T> void transform(Matrix<T>& re, Matrix<T>& im, int sign)
{
  if (re.getNumElements() == 0) return;
  ComplexBuffer<T> buffer(re.getNumElements());
  const Plan<T> plan(
      [&] { return Fftw<T>::plan2D(re.getSize1(), re.getSize2(), buffer.data(), buffer.data(), sign, FFTW_ESTIMATE); });
  buffer.read(re.data(), im.data());
  plan.execute();
  buffer.write(re.data(), im.data());
}

template <class T> bool haveSameSize(const Vector<T>& re, const Vector<T>& im)
{
  return re.getSize() == im.getSize();
}

template <class T> bool haveSameSize(const Matrix<T>& re, const Matrix<T>& im)
{
  return re.getSize1() == im.getSize1() && re.getSize2() == im.getSize2();
}

template <class Container> void requireSameSize(const Container& re, const Container& im, const char* where)
{
  if (!haveSameSize(re, im)) throw SizeError(where, "Real and imaginary parts have different sizes");
}

/// Moves the first `count` elements behind the others.
template <class T> void rotate(Vector<T>& v, int count)
{
  std::rotate(v.begin(), v.begin() + count, v.end());
}

/// The same for the columns and for the rows.
template <class T> void rotate(Matrix<T>& m, int rows, int columns)
{
  for (int i = 0; i < m.getSize1(); ++i) rotate(m[i], columns);
  const std::size_t rowSize = m.getSize2();
  std::rotate(m.data(), m.data() + rows * rowSize, m.data() + m.getNumElements());
}

int longHalf(int size)
{
  return size - size / 2;
}

template <class T> T phase(T re, T im)
{
  return std::atan2(im, re);
}

template <class T> T power(T re, T im)
{
  return re * re + im * im;
}
} // namespace

template <class T> void FourierTransform<T>::computeForward(Vector<T>& re, Vector<T>& im)
{
  requireSameSize(re, im, "void FourierTransform<T>::computeForward(Vector<T>&, Vector<T>&)");
  transform(re, im, FFTW_FORWARD);
}

template <class T> void FourierTransform<T>::computeForward(Matrix<T>& re, Matrix<T>& im)
{
  requireSameSize(re, im, "void FourierTransform<T>::computeForward(Matrix<T>&, Matrix<T>&)");
  transform(re, im, FFTW_FORWARD);
}

template <class T> void FourierTransform<T>::computeBackward(Vector<T>& re, Vector<T>& im)
{
  requireSameSize(re, im, "void FourierTransform<T>::computeBackward(Vector<T>&, Vector<T>&)");
  transform(re, im, FFTW_BACKWARD);
}

template <class T> void FourierTransform<T>::computeBackward(Matrix<T>& re, Matrix<T>& im)
{
  requireSameSize(re, im, "void FourierTransform<T>::computeBackward(Matrix<T>&, Matrix<T>&)");
  transform(re, im, FFTW_BACKWARD);
}

template <class T> void FourierTransform<T>::shift(Vector<T>& re, Vector<T>& im)
{
  requireSameSize(re, im, "void FourierTransform<T>::shift(Vector<T>&, Vector<T>&)");
  for (Vector<T>* part : {&re, &im}) rotate(*part, longHalf(part->getSize()));
}

template <class T> void FourierTransform<T>::shift(Matrix<T>& re, Matrix<T>& im)
{
  requireSameSize(re, im, "void FourierTransform<T>::shift(Matrix<T>&, Matrix<T>&)");
  for (Matrix<T>* part : {&re, &im}) rotate(*part, longHalf(part->getSize1()), longHalf(part->getSize2()));
}

template <class T> void FourierTransform<T>::ishift(Vector<T>& re, Vector<T>& im)
{
  requireSameSize(re, im, "void FourierTransform<T>::ishift(Vector<T>&, Vector<T>&)");
  for (Vector<T>* part : {&re, &im}) rotate(*part, part->getSize() / 2);
}

template <class T> void FourierTransform<T>::ishift(Matrix<T>& re, Matrix<T>& im)
{
  requireSameSize(re, im, "void FourierTransform<T>::ishift(Matrix<T>&, Matrix<T>&)");
  for (Matrix<T>* part : {&re, &im}) rotate(*part, part->getSize1() / 2, part->getSize2() / 2);
}

template <class T> void FourierTransform<T>::phaseAngle(Vector<T>& out, const Vector<T>& re, const Vector<T>& im)
{
  requireSameSize(re, im, "void FourierTransform<T>::phaseAngle(Vector<T>&, const Vector<T>&, const Vector<T>&)");
  out.setSize(re.getSize());
  std::transform(re.begin(), re.end(), im.begin(), out.begin(), phase<T>);
}

template <class T> void FourierTransform<T>::phaseAngle(Matrix<T>& out, const Matrix<T>& re, const Matrix<T>& im)
{
  requireSameSize(re, im, "void FourierTransform<T>::phaseAngle(Matrix<T>&, const Matrix<T>&, const Matrix<T>&)");
  out.setSize(re.getSize1(), re.getSize2());
  std::transform(re.data(), re.data() + re.getNumElements(), im.data(), out.data(), phase<T>);
}

template <class T> void FourierTransform<T>::powerSpectrum(Vector<T>& out, const Vector<T>& re, const Vector<T>& im)
{
  requireSameSize(re, im, "void FourierTransform<T>::powerSpectrum(Vector<T>&, const Vector<T>&, const Vector<T>&)");
  out.setSize(re.getSize());
  std::transform(re.begin(), re.end(), im.begin(), out.begin(), power<T>);
}

template <class T> void FourierTransform<T>::powerSpectrum(Matrix<T>& out, const Matrix<T>& re, const Matrix<T>& im)
{
  requireSameSize(re, im, "void FourierTransform<T>::powerSpectrum(Matrix<T>&, const Matrix<T>&, const Matrix<T>&)");
  out.setSize(re.getSize1(), re.getSize2());
  std::transform(re.data(), re.data() + re.getNumElements(), im.data(), out.data(), power<T>);
}

template class FourierTransform<float>;
template class FourierTransform<double>;
template class FourierTransform<long double>;
