// Videos through the encoder: names for the shell, sizes, rates, numbers of frames, and failures.
#include "rendering_window.h"

#include "viewer/nyxcreatevideodialog.h"
#include "viewer/nyxrenderingvideo.h"
#include "viewer/nyxrenderingvideothread.h"
#include "viewer/videocommand.h"
#include "viewer/viewermediator.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>

namespace
{
QString outputOf(const QString& program, const QStringList& arguments)
{
  QProcess process;
  process.start(program, arguments);
  process.waitForFinished(60000);
  return QString::fromUtf8(process.readAllStandardOutput());
}

/// Width, height, rate and number of frames as ffprobe counts them.
QString probe(const QString& file)
{
  return outputOf("ffprobe", {"-v", "error", "-count_frames", "-select_streams", "v:0", "-show_entries",
                              "stream=width,height,r_frame_rate,nb_read_frames", "-of", "csv=p=0", file})
      .trimmed();
}

QStringList temporaryFolders()
{
  return QDir(QDir::tempPath()).entryList({"mirelo_viewer_tests*"}, QDir::Dirs);
}
} // namespace

TEST(VideoCommand, QuotesEveryName)
{
  for (const QString name :
       {"plain", "two words", "it's", "$HOME", "`id`", "a\"b", "back\\slash", "new\nline", "*?[", "-x", ";&|"})
    EXPECT_EQ(outputOf("/bin/sh", {"-c", "printf %s " + VideoCommand::quoted(name)}), name);
  EXPECT_EQ(VideoCommand::frameName("/tmp/f", 7), "/tmp/f/0007.png");
  EXPECT_EQ(VideoCommand::frameName("/tmp/f", 12345), "/tmp/f/12345.png");
  EXPECT_EQ(VideoCommand::encode("/tmp/a 100%", 25, "/out/it's.avi"),
            "ffmpeg -r 25 -i '/tmp/a 100%%/%04d.png' -an -r 25 -y -crf 20 -vcodec libx264 '/out/it'\\''s.avi'");
  EXPECT_EQ(VideoCommand::emptyFolder("/tmp/a b"), "rm -f '/tmp/a b'/*");
  EXPECT_EQ(VideoCommand::removeFolder("/tmp/a b"), "rmdir '/tmp/a b'");
}

TEST(VideoThread, MakesAVideoThatCanBeReadUnderAnyName)
{
  ASSERT_TRUE(NYXRenderingVideo::isEncoderInstalled());
  const QTemporaryDir folder;
  for (const QString name : {"two words.avi", "it's $HOME \"here\".mov", "-out.flv", "a;b & c.avi"})
  {
    SCOPED_TRACE(name.toStdString());
    const QString output = folder.filePath(name);
    NYXRenderingVideoThread thread(output, 10);
    thread.start();
    for (int n = 0; n < 23; ++n)
    {
      QImage frame(161, 90, QImage::Format_RGB32);
      frame.fill(QColor(10 * n, 0, 255 - 10 * n));
      thread.addFrame(frame);
    }
    thread.finishFrames();
    ASSERT_TRUE(thread.wait(60000));
    EXPECT_EQ(thread.getProblem(), "");
    EXPECT_EQ(probe(output), "161,90,10/1,23");
  }
}

TEST(VideoThread, TellsWhyThereIsNoVideoAndLeavesNothingBehind)
{
  QString frames;
  {
    NYXRenderingVideoThread thread("/nowhere/video.avi", 10);
    frames = thread.getFolder();
    thread.start();
    thread.addFrame(QImage(64, 48, QImage::Format_RGB32));
    thread.finishFrames();
    ASSERT_TRUE(thread.wait(60000));
    EXPECT_THAT(thread.getProblem().toStdString(), testing::HasSubstr("/nowhere"));
    EXPECT_TRUE(QFileInfo::exists(frames + "/0000.png"));
  }
  EXPECT_FALSE(QFileInfo::exists(frames));
  {
    NYXRenderingVideoThread thread("/nowhere/video.avi", 10);
    frames = thread.getFolder();
    thread.start();
    thread.addFrame(QImage(64, 48, QImage::Format_RGB32));
    thread.finishFrames();
    ASSERT_TRUE(thread.wait(60000));
    thread.keepFrames();
  }
  EXPECT_TRUE(QFileInfo::exists(frames + "/0000.png"));
  QDir(frames).removeRecursively();
  const QTemporaryDir folder;
  NYXRenderingVideoThread empty(folder.filePath("a.avi"), 10);
  empty.start();
  empty.finishFrames();
  ASSERT_TRUE(empty.wait(60000));
  EXPECT_EQ(empty.getProblem(), "No frame was recorded");
}

TEST(VideoThread, TakesThePlaceOfAVideoOnlyWhenItIsComplete)
{
  const QTemporaryDir folder;
  const auto record = [&folder](const QString& name)
  {
    QFile former(folder.filePath(name));
    EXPECT_TRUE(former.open(QIODevice::WriteOnly));
    former.write("former video");
    former.close();
    NYXRenderingVideoThread thread(former.fileName(), 10);
    thread.start();
    thread.addFrame(QImage(64, 48, QImage::Format_RGB32));
    thread.finishFrames();
    EXPECT_TRUE(thread.wait(60000));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList{name});
    EXPECT_TRUE(former.open(QIODevice::ReadOnly));
    const bool isKept = former.readAll() == "former video";
    EXPECT_TRUE(former.remove());
    return std::pair{thread.getProblem().toStdString(), isKept};
  };
  EXPECT_THAT(record("a.unknown"), testing::Pair(testing::HasSubstr("The encoder failed"), true));
  EXPECT_EQ(record("a.avi"), std::pair(std::string(), false));
}

TEST(VideoThread, TakesNoFramesThatItCannotWrite)
{
  const QTemporaryDir folder;
  NYXRenderingVideoThread thread(folder.filePath("a.avi"), 10);
  QDir(thread.getFolder()).removeRecursively();
  thread.start();
  thread.addFrame(QImage(64, 48, QImage::Format_RGB32));
  ASSERT_TRUE(thread.wait(60000));
  thread.addFrame(QImage(64, 48, QImage::Format_RGB32)); // nobody would take it out again
  EXPECT_EQ(thread.getNumFrames(), 1);
  EXPECT_THAT(thread.getProblem().toStdString(), testing::HasSubstr("Cannot write the frame"));
  QDir().mkdir(thread.getFolder()); // for the thread to remove
}

TEST_F(RenderingWindow, RecordsOneTurn)
{
  const QTemporaryDir folder;
  const QString output = folder.filePath("one turn.avi");
  window->resize(420, 320);
  NYXRenderingVideo& video = window->video();
  QSignalSpy made(&video, &NYXRenderingVideo::videoMade);
  video.startVideo({output, 20, true, false, 20, 30});
  EXPECT_TRUE(video.isRecording());
  ASSERT_TRUE(QTest::qWaitFor([&] { return !made.isEmpty(); }, 60000));
  EXPECT_FALSE(video.isRecording());
  EXPECT_NEAR(window->canvas().getPose().getYRotation(), 0, 1e-2); // 18 steps of 20 degrees
  const QSize size = window->canvas().size();
  const QStringList words = probe(output).split(',');
  ASSERT_EQ(words.size(), 4);
  EXPECT_EQ(words[0].toInt(), size.width());
  EXPECT_EQ(words[1].toInt(), size.height());
  EXPECT_EQ(words[2], "20/1");
  EXPECT_GE(words[3].toInt(), 3);
  EXPECT_TRUE(temporaryFolders().isEmpty());
}

TEST_F(RenderingWindow, ATurnThatTheUserEndsIsRecordedSoFar)
{
  const QTemporaryDir folder;
  window->resize(420, 320);
  NYXRenderingVideo& video = window->video();
  QSignalSpy made(&video, &NYXRenderingVideo::videoMade);
  video.startVideo({folder.filePath("part.avi"), 20, true, false, 1, 30});
  ASSERT_TRUE(QTest::qWaitFor([&] { return video.getNumFrames() >= 3; }));
  window->mediator().motionActions()[0]->trigger(); // Spin
  ASSERT_TRUE(QTest::qWaitFor([&] { return !made.isEmpty(); }, 60000));
  EXPECT_FALSE(video.isRecording());
  EXPECT_LT(window->canvas().getPose().getYRotation(), 300);
}

TEST_F(RenderingWindow, AMissingEncoderIsTold)
{
  const QByteArray path = qgetenv("PATH");
  qputenv("PATH", "/nowhere");
  QString text;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout,
                   [&text]
                   {
                     auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                     if (box == nullptr) return;
                     text = box->text();
                     box->accept();
                   });
  timer.start(5);
  EXPECT_FALSE(window->video().checkEncoder());
  qputenv("PATH", path);
  EXPECT_THAT(text.toStdString(), testing::StartsWith("Please install ffmpeg software"));
  EXPECT_TRUE(window->video().checkEncoder());
}

TEST(CreateVideoDialog, AsksForFileRateAndTurn)
{
  NYXCreateVideoDialog dialog(nullptr);
  const auto find = [&dialog](const char* name) { return dialog.findChild<QAbstractButton*>(name); };
  EXPECT_EQ(find("circular")->text(), "Circular animation");
  EXPECT_EQ(find("repeat")->text(), "Automatically repeat");
  EXPECT_FALSE(find("repeat")->isEnabled());
  dialog.findChild<QLineEdit*>("output")->setText("/tmp/film");
  EXPECT_EQ(dialog.settings().output, "/tmp/film.avi");
  dialog.findChild<QLineEdit*>("output")->setText("/tmp/film.MPG");
  find("circular")->click();
  EXPECT_TRUE(find("repeat")->isEnabled());
  EXPECT_TRUE(dialog.settings().isCircular);
  EXPECT_EQ(dialog.settings().output, "/tmp/film.MPG");
}
