#pragma once

#include "app/Lintora/sound/MediaDevice.h"

#include <QAudioOutput>
#include <QMediaPlayer>
#include <QObject>
#include <QTimer>
#include <QVideoFrame>
#include <QVideoSink>

#include <optional>

/// Plays by Qt Multimedia.
class QtMediaDevice : public QObject, public MediaDevice
{
    Q_OBJECT

public:
    explicit QtMediaDevice(Listener listener);
    ~QtMediaDevice() override;

    void open(const QString &path) override;
    void play() override;
    void pause() override;
    void seek(qint64 ms) override;
    void setRate(double rate) override;

private:
    void followStatus(QMediaPlayer::MediaStatus status);
    void doubt(QMediaPlayer::Error error, const QString &reason);
    void fail();
    void goOn(qint64 ms);
    void seekNow();
    void tryAgain();
    void settle();
    void take(const QVideoFrame &frame);
    void showNewest();

    Listener m_listener;
    QAudioOutput m_output;
    QVideoSink m_sink;
    QMediaPlayer m_player;
    bool m_isLoaded = false;
    bool m_wantsPlaying = false;
    bool m_isAtEnd = false;
    std::optional<qint64> m_wanted; ///< Where it is to be put; absent: where it is.
    std::optional<qint64> m_sought; ///< Where it is being put now.
    QTimer m_patience;              ///< For a seek that nothing is heard of ...
    int m_attempts = 0;             ///< ... which is tried again.
    QTimer m_doubt;                 ///< Runs after a complaint, until something plays all the same.
    QString m_reason;               ///< Of the complaint.
    QVideoFrame m_newest;           ///< Waits to be shown.
    QTimer m_showing;
};
