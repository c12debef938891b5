#include "slice/image/nyximageserver.h"

#include "app/core/nyxpreferences.h"
#include "image/imagesource.h"
#include "slice/image/nyximageproxy.h"

#include <QMutexLocker>

#include <algorithm>
#include <cmath>
#include <sys/sysinfo.h>

namespace
{
constexpr std::int64_t mebibyte = 1 << 20;
constexpr long numProgressSteps = 1000;

bool isShown(const std::unique_ptr<NYXImageServerData>& data)
{
  return data->hasProxies();
}

std::int64_t sumOfMebibytes(const std::vector<std::unique_ptr<NYXImageServerData>>& list)
{
  std::int64_t sum = 0;
  for (const auto& data : list) sum += data->numBytes() / mebibyte;
  return sum;
}
} // namespace

NYXImageServer::NYXImageServer(QObject* parent) : QObject(parent) {}

NYXImageServer::~NYXImageServer()
{
  for (DataList* list : {&_pending, &_running, &_loaded})
    for (DataList left = std::exchange(*list, DataList()); const auto& data : left) data->disconnect(this);
}

std::unique_ptr<NYXImageServerData> NYXImageServer::newData(const NYXImageProxy& proxy)
{
  return std::make_unique<NYXImageServerData>(*proxy.getImageSource(), proxy.key());
}

std::int64_t NYXImageServer::totalMemory() const
{
  struct sysinfo information = {};
  sysinfo(&information);
  return static_cast<std::int64_t>(information.totalram) * static_cast<std::int64_t>(information.mem_unit);
}

/// Bytes that images may take.
std::int64_t NYXImageServer::memoryShare() const
{
  return totalMemory() / 100 * NYXPreferences::getPercentMemoryUsage();
}

std::int64_t NYXImageServer::numHeldBytes() const
{
  const QMutexLocker lock(&_mutex);
  std::int64_t sum = 0;
  for (const DataList* list : {&_running, &_loaded})
    for (const auto& data : *list) sum += data->numHeldBytes();
  return sum;
}

/// The lists are searched with the mutex locked.
NYXImageServerData* NYXImageServer::find(const QString& key) const
{
  for (const DataList* list : {&_loaded, &_running, &_pending})
    for (const auto& data : *list)
      if (data->key() == key) return data.get();
  return nullptr;
}

std::unique_ptr<NYXImageServerData> NYXImageServer::take(DataList& list, DataList::iterator place)
{
  std::unique_ptr<NYXImageServerData> data = std::move(*place);
  list.erase(place);
  return data;
}

void NYXImageServer::attachProxy(NYXImageProxy& proxy)
{
  if (proxy.hasImageServer()) proxy.getImageServer().detachProxy(proxy);
  if (!proxy.getImageSource()) return;
  proxy.setImageServer(this);
  NYXImageServerData* data = nullptr;
  {
    const QMutexLocker lock(&_mutex);
    data = find(proxy.key());
    if (!data) data = _pending.emplace_back(newData(proxy)).get();
  }
  data->attachProxy(proxy);
  schedule();
}

void NYXImageServer::detachProxy(NYXImageProxy& proxy)
{
  if (!proxy.hasImageServer() || &proxy.getImageServer() != this) return;
  const QString key = proxy.key();
  {
    const QMutexLocker lock(&_mutex);
    if (NYXImageServerData* data = find(key)) data->detachProxy(proxy);
  }
  proxy.setImageServer(nullptr);
  proxy.clearImage();
  if (_autoDelete) return removeUnused([&key](const NYXImageServerData& data) { return data.key() == key; });
  schedule();
}

void NYXImageServer::loadWhenIdle(const NYXImageProxy& proxy)
{
  if (_autoDelete || !proxy.getImageSource()) return;
  {
    const QMutexLocker lock(&_mutex);
    if (find(proxy.key())) return;
    _pending.push_back(newData(proxy));
  }
  schedule();
}

/// Brings the lists into order after any change, and goes on with what is to be done next.
void NYXImageServer::schedule()
{
  dropStalePending();
  cancelUnusedRunning();
  if (_running.empty()) finish();
  runNextPendingData();
}

/// Of what waits and is not shown, only the newest is worth loading.
void NYXImageServer::dropStalePending()
{
  constexpr int numKept = 2;
  DataList dropped;
  {
    const QMutexLocker lock(&_mutex);
    int numUnused = static_cast<int>(_pending.size() - std::ranges::count_if(_pending, isShown));
    for (; numUnused > numKept; --numUnused)
      dropped.push_back(take(_pending, std::ranges::find_if_not(_pending, isShown)));
  }
  for (auto& data : dropped) discard(std::move(data));
}

/// What runs for nobody makes way for what somebody waits for.
void NYXImageServer::cancelUnusedRunning()
{
  std::unique_ptr<NYXImageServerData> cancelled;
  {
    const QMutexLocker lock(&_mutex);
    if (_running.empty() || isShown(_running.front()) || std::ranges::none_of(_pending, isShown)) return;
    cancelled = take(_running, _running.begin());
  }
  discard(std::move(cancelled));
}

/// The first that somebody waits for, else the last.
NYXImageServer::DataList::iterator NYXImageServer::nextPending()
{
  const auto first = std::ranges::find_if(_pending, isShown);
  return first != _pending.end() ? first : std::prev(_pending.end());
}

void NYXImageServer::runNextPendingData()
{
  if (!_running.empty() || _pending.empty()) return;
  NYXImageServerData* next = nullptr;
  {
    const QMutexLocker lock(&_mutex);
    next = _running.emplace_back(take(_pending, nextPending())).get();
  }
  if (!next->hasProxies() && !fits(*next))
  {
    discard(takeRunning(next));
    return runNextPendingData();
  }
  makeRoom(*next);
  connect(next, &NYXImageServerData::finished, this, &NYXImageServer::subjectFinished);
  connect(next, &NYXImageServerData::canceled, this, &NYXImageServer::subjectCanceled);
  connect(next, &NYXImageServerData::progressed, this,
          [this](double share) { progress(std::lround(share * numProgressSteps)); });
  start("Loading the image", numProgressSteps);
  next->run(_baseSize);
}

/// Whether there is room for the image without deleting another one.
bool NYXImageServer::fits(const NYXImageServerData& data) const
{
  return !isAboveShare(data) && numHeldBytes() + data.numNeededBytes() <= memoryShare();
}

/// Whether the images' own sizes, without pyramids and in whole MiB each, exceed the share with this one.
bool NYXImageServer::isAboveShare(const NYXImageServerData& data) const
{
  const std::int64_t use = sumOfMebibytes(_loaded), need = data.numBytes() / mebibyte;
  return totalMemory() / mebibyte * NYXPreferences::getPercentMemoryUsage() / 100 < use + need;
}

/// Deletes loaded images that nobody shows, the oldest first: as many as the image needs when the share is exceeded,
/// then more until what is really held fits, pyramids included.
void NYXImageServer::makeRoom(const NYXImageServerData& data)
{
  const std::int64_t use = sumOfMebibytes(_loaded), need = data.numBytes() / mebibyte;
  if (isAboveShare(data)) deleteUnusedLoaded([&] { return use - sumOfMebibytes(_loaded) >= need; });
  deleteUnusedLoaded([&] { return numHeldBytes() + data.numNeededBytes() <= memoryShare(); });
}

void NYXImageServer::deleteUnusedLoaded(const std::function<bool()>& isEnough)
{
  while (!isEnough())
  {
    std::unique_ptr<NYXImageServerData> unused;
    {
      const QMutexLocker lock(&_mutex);
      const auto oldest = std::ranges::find_if_not(_loaded, isShown);
      if (oldest == _loaded.end()) return;
      unused = take(_loaded, oldest);
    }
    discard(std::move(unused));
  }
}

/// Out of the list, or nullptr when it is not there any more.
std::unique_ptr<NYXImageServerData> NYXImageServer::takeRunning(const NYXImageServerData* data)
{
  const QMutexLocker lock(&_mutex);
  const auto place = std::ranges::find(_running, data, &std::unique_ptr<NYXImageServerData>::get);
  return place == _running.end() ? nullptr : take(_running, place);
}

void NYXImageServer::subjectFinished(NYXImageServerData* data)
{
  if (auto loaded = takeRunning(data))
  {
    const QMutexLocker lock(&_mutex);
    _loaded.push_back(std::move(loaded));
  }
  schedule();
}

void NYXImageServer::subjectCanceled(NYXImageServerData* data)
{
  const QString problem = data->problem();
  if (auto cancelled = takeRunning(data)) discard(std::move(cancelled), problem);
  schedule();
}

/// Stops the data, takes it from its proxies and frees its memory. The rest of it goes later, since it may be the one
/// whose signal is being answered.
void NYXImageServer::discard(std::unique_ptr<NYXImageServerData> data, const QString& problem)
{
  data->disconnect(this);
  data->cancel();
  NYXImageServerData* const left = data.release();
  left->deleteLater();
  left->clear(problem);
}

void NYXImageServer::removeUnused(const std::function<bool(const NYXImageServerData&)>& isUnwanted)
{
  DataList removed;
  {
    const QMutexLocker lock(&_mutex);
    for (DataList* list : {&_pending, &_running, &_loaded})
      for (auto place = list->end(); place != list->begin();)
        if (--place; !isShown(*place) && isUnwanted(**place)) removed.push_back(take(*list, place));
  }
  for (auto& data : removed) discard(std::move(data));
  schedule();
}
