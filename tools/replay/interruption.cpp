#include "interruption.hpp"

#include <array>
#include <csignal>
#include <cstddef>

namespace tools
{

namespace
{

constexpr std::array signals{SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t noted = 0;
std::array<struct sigaction, signals.size()> before;

void note(int signal)
{
  noted = signal;
}

}  // namespace

Interruption::Interruption()
{
  struct sigaction action = {};
  action.sa_handler = note;  // without SA_RESTART: a read that waits for input must end, too
  sigemptyset(&action.sa_mask);
  for (std::size_t i = 0; i < signals.size(); ++i)
  {
    sigaction(signals[i], nullptr, &before[i]);
    if (before[i].sa_handler != SIG_IGN)
      sigaction(signals[i], &action, nullptr);
  }
}

Interruption::~Interruption()
{
  for (std::size_t i = 0; i < signals.size(); ++i)
    sigaction(signals[i], &before[i], nullptr);
}

void Interruption::check()
{
  if (noted != 0)
    throw Interrupted{noted};
}

}  // namespace tools
