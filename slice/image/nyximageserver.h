#pragma once

#include "app/core/nyxstackimages.h"
#include "numeric/progresssubject.h"
#include "slice/image/nyximageserverdata.h"

#include <QMutex>
#include <QObject>
#include <QSize>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class NYXImageProxy;

/// Loads the images that proxies show: each source once whatever the number of proxies, in background threads, one at
/// a time, and keeps what is not shown any more as long as the share of memory allows.
///
/// To be used in the thread of the windows. Observers are told there of the progress of the image that is loaded.
class NYXImageServer : public QObject, public NYXStackImages, public ProgressSubject
{
  Q_OBJECT

public:
  explicit NYXImageServer(QObject* parent = nullptr);
  /// Cancels what runs and detaches all proxies.
  ~NYXImageServer() override;

  /// Gives the proxy the images of its source: at once what is loaded, the rest as it comes. Loading for nobody makes
  /// way. A proxy that is attached already is detached first; one without a source stays detached.
  void attachProxy(NYXImageProxy& proxy);
  /// The proxy's images may be freed from now on.
  void detachProxy(NYXImageProxy& proxy);

  /// Of images loaded from now on: the size into which one reduced copy has to fit; (0, 0) asks for a pyramid of
  /// halved images.
  void setBaseSize(const QSize& size) { _baseSize = size; }
  const QSize& getBaseSize() const { return _baseSize; }
  /// Whether images that no proxy shows are dropped at once, loaded or not.
  void setAutoDelete(bool isOn) { _autoDelete = isOn; }
  bool isAutoDelete() const { return _autoDelete; }

  /// Images that wait to be loaded, are being loaded, and are loaded.
  int getNumPending() const { return static_cast<int>(_pending.size()); }
  int getNumRunning() const { return static_cast<int>(_running.size()); }
  int getNumLoaded() const { return static_cast<int>(_loaded.size()); }
  /// Memory that the images take, all levels included, in bytes.
  std::int64_t numHeldBytes() const;

public slots:
  /// News of data that is loaded, or was cancelled or failed.
  /// @{
  void subjectFinished(NYXImageServerData* data);
  void subjectCanceled(NYXImageServerData* data);
  /// @}

protected:
  using DataList = std::vector<std::unique_ptr<NYXImageServerData>>; // oldest first

  /// What is to be loaded for a proxy.
  virtual std::unique_ptr<NYXImageServerData> newData(const NYXImageProxy& proxy);
  /// Memory of the machine in bytes.
  virtual std::int64_t totalMemory() const;

  /// Loads the proxy's image when nobody waits for another one and it fits into memory beside all others.
  void loadWhenIdle(const NYXImageProxy& proxy);
  /// Cancels and deletes data without proxies, the last of each list first, for which isUnwanted(data) holds.
  void removeUnused(const std::function<bool(const NYXImageServerData&)>& isUnwanted);

private:
  NYXImageServerData* find(const QString& key) const;
  static std::unique_ptr<NYXImageServerData> take(DataList& list, DataList::iterator place);
  std::unique_ptr<NYXImageServerData> takeRunning(const NYXImageServerData* data);
  void discard(std::unique_ptr<NYXImageServerData> data, const QString& problem = QString());
  void schedule();
  void dropStalePending();
  void cancelUnusedRunning();
  void runNextPendingData();
  DataList::iterator nextPending();
  bool fits(const NYXImageServerData& data) const;
  bool isAboveShare(const NYXImageServerData& data) const;
  void makeRoom(const NYXImageServerData& data);
  void deleteUnusedLoaded(const std::function<bool()>& isEnough);
  std::int64_t memoryShare() const;

  mutable QMutex _mutex; // guards the lists
  DataList _pending;
  DataList _running; // one at most
  DataList _loaded;
  QSize _baseSize = QSize(0, 0);
  bool _autoDelete = false;
};
