#pragma once

#include "image/image.h"
#include "slice/image/nyximagereader.h"
#include "slice/image/nyximageresizer.h"

#include <QMutex>
#include <QObject>
#include <QSize>
#include <QString>
#include <QThread>

#include <cstdint>
#include <memory>
#include <vector>

class ImageSource;
class NYXImageProxy;

/// One image of a server: read in one thread, reduced in another, handed to all proxies that show it.
///
/// Lives in the thread of the windows, as what the threads have done comes back there by queued signals.
class NYXImageServerData : public QObject
{
  Q_OBJECT

public:
  static constexpr double readerShare = 0.75; ///< of the work that reading is; the rest is reducing

  /// Copies the source.
  NYXImageServerData(const ImageSource& source, const QString& key,
                     NYXImageReader::ReadFunction read = NYXImageReader::defaultReadFunction());
  /// Cancels what runs, clears the images of all proxies and detaches them.
  ~NYXImageServerData() override;

  const QString& key() const { return _key; }
  /// Bytes of the source's image in its file's depth; 0 when its header cannot be read.
  std::int64_t numBytes() const { return _numBytes; }
  /// Bytes that the image takes while it is loaded, with its pyramid and without its colormap, at the utmost.
  std::int64_t numNeededBytes() const { return _numNeededBytes; }
  /// Bytes that it takes now: what is needed while it is loaded, then what was.
  std::int64_t numHeldBytes() const;

  /// The proxy gets what is there by now at once, in order.
  void attachProxy(NYXImageProxy& proxy);
  void detachProxy(NYXImageProxy& proxy);
  bool hasProxies() const;
  bool hasProxy(const NYXImageProxy& proxy) const;

  /// Begins to read.
  void run(const QSize& baseSize);
  /// Stops the thread that runs, for which it waits.
  void cancel();
  /// Frees the memory, detaches all proxies, clears their images and tells them the problem, if there is one. Only
  /// while no thread runs.
  void clear(const QString& problem = QString());
  /// Why the image cannot be read; empty when nothing failed.
  const QString& problem() const { return _reader.problem(); }

signals:
  /// The image is read and reduced.
  void finished(NYXImageServerData* data);
  /// It cannot be read.
  void canceled(NYXImageServerData* data);
  /// The share of the work that is done, 0 to 1.
  void progressed(double share);

private:
  void start(QThread& thread, NYXImageWorker& worker);
  static void stop(QThread& thread, const NYXImageWorker& worker);
  void readerFinished();
  void resizerFinished();
  void reducedImageAvailable();
  void notifyProxysUpdateImage(const Image& image);
  void give(const Image& image, NYXImageProxy& proxy);
  std::vector<const Image*> images() const;
  std::vector<NYXImageProxy*> proxies() const;

  QString _key;
  std::int64_t _numBytes = 0;
  std::int64_t _numNeededBytes = 0;
  QSize _baseSize;
  std::unique_ptr<Image> _fullImage;
  std::vector<std::unique_ptr<Image>> _reducedImages;
  bool _isRunning = false;
  std::vector<NYXImageProxy*> _proxies;
  mutable QMutex _mutex; // guards the proxies and the start of a thread
  NYXImageReader _reader;
  NYXImageResizer _resizer;
  QThread _readerThread;
  QThread _resizerThread;
};
