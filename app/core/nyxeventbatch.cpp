#include "app/core/nyxeventbatch.h"

#include <iostream>

NYXEventBatch::~NYXEventBatch()
{
  if (!_isMine || !NYXEventClient::eventBatchEnabled()) return;
  try
  {
    NYXEventClient::enableEventBatch(false);
  }
  catch (...)
  {
    std::cerr << "A window could not be refreshed after a change.\n"; // the change itself stands
  }
}
