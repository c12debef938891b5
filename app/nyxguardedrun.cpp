#include "app/nyxguardedrun.h"

#include "app/core/nyxexception.h"

#include <exception>
#include <iostream>

namespace
{
template <class Details> int report(const Details& details)
{
  std::cout << "*** Exception ***\n" << details << std::endl;
  return 0;
}
} // namespace

int guardedRun(const std::function<int()>& windows)
{
  try
  {
    return windows();
  }
  catch (const NYXException& exception)
  {
    return report(exception);
  }
  catch (const Exception& exception)
  {
    return report(exception);
  }
  catch (const std::exception& exception)
  {
    return report(exception.what());
  }
  catch (...)
  {
    return report("No details available");
  }
}
