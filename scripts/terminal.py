#!/usr/bin/env python3
"""Runs a console program inside a terminal of its own (tmux) and types for it.

As a program:  terminal.py COMMAND...  < answers.txt
types the lines of its standard input, each when the program asks for one, and prints the dialogue as a person would
see it. It ends when the program ends, when the program asks for more than the input has, when nothing happens for a
while, or after ANSWER_LIMIT answers.
"""
import os
import pathlib
import queue
import shlex
import shutil
import subprocess
import sys
import tempfile
import termios
import threading
import time

ANSWER_LIMIT = 1000
LINE_LIMIT = 16384      # characters of one answer
WAIT_LIMIT = 600        # seconds to wait for the next prompt, and for the next line of the input
COLUMNS = 500           # wide, so that the printed dialogue has no line breaks of the terminal's own
QUIET_LIMIT = 120       # seconds without a change before a program that does not ask is given up
SETTLE_TIME = 0.15      # seconds for which a prompt must not change
LAST_SETTLE_TIME = 1.0  # the same when the input has ended: the last answer may still be on its way
POLL_TIME = 0.03
END_TITLE = "ormacon-ended"  # of the terminal, set after everything that the program has printed


class Terminal:
    """One program in one tmux session on a server of its own."""

    def __init__(self, command, columns=200, rows=50, cwd=None):
        self._folder = tempfile.TemporaryDirectory(prefix="ormacon-", ignore_cleanup_errors=True)
        self._socket, self._status = (pathlib.Path(self._folder.name, name) for name in ("socket", "status"))
        self._require("start-server", ";", "set", "-g", "history-limit", "200000", ";",
                   "set", "-g", "remain-on-exit", "on", ";", "set", "-g", "remain-on-exit-format", "", ";",
                   "new-session", "-d", "-x", str(columns), "-y", str(rows), *(["-c", cwd] if cwd else []),
                   f"trap : INT; {shlex.join(command)}; echo $? >{self._status}; "
                   f"printf '\\033]2;{END_TITLE}\\033\\\\'; exec sleep infinity")

    def _run(self, *arguments, input_text=None):
        return subprocess.run(["tmux", "-u", "-f", "/dev/null", "-S", self._socket, *arguments], input=input_text,
                              capture_output=True, encoding="utf-8", errors="replace", check=False)

    def _tmux(self, *arguments):
        return self._run(*arguments).stdout

    def _require(self, *arguments, input_text=None):
        result = self._run(*arguments, input_text=input_text)
        if result.returncode != 0:
            raise RuntimeError(f"tmux failed: {result.stderr.strip()}")

    def _state(self, what):
        return self._tmux("display-message", "-p", "#{%s}" % what).strip()

    def screen(self):
        """Everything shown since the start, without the empty rest of the screen."""
        lines = self._tmux("capture-pane", "-p", "-S", "-").split("\n")
        while lines and not lines[-1].strip():
            lines.pop()
        return "\n".join(lines)

    def ended(self):
        """Whether the program has ended and all that it printed is on the screen. A terminal whose last process ends
        now and then loses the end of what was printed, so another process keeps it open."""
        state = self._tmux("display-message", "-p", "#{pane_dead} #{pane_title}").strip()
        return not state.startswith("0") or state == f"0 {END_TITLE}"

    def exit_status(self):
        """Of a program that has ended. Not from tmux, which loses one status in four."""
        return int(self._status.read_text()) if self._status.exists() else -1

    def reads(self):
        """Whether the program has begun to read. Until its first read Wine leaves the terminal in the kernel's line
        mode: what is typed then is echoed even at a password prompt, and its Enter is lost."""
        try:
            tty = os.open(self._state("pane_tty"), os.O_RDONLY | os.O_NOCTTY)
        except OSError:
            return False
        try:
            return not termios.tcgetattr(tty)[3] & termios.ICANON
        finally:
            os.close(tty)

    def at_prompt(self):
        """A prompt leaves the cursor after its text; a program that works leaves it at the start of a line."""
        return not self.ended() and self._state("cursor_x") not in ("0", "") and self.reads()

    def cursor_line(self):
        """The text before the cursor, with trailing spaces."""
        x, y = int(self._state("cursor_x")), self._state("cursor_y")
        line = self._tmux("capture-pane", "-p", "-S", y, "-E", y).rstrip("\n")
        return line[:x].ljust(x) if len(line) <= x else line

    def type(self, text):
        # Through a buffer: other users can see arguments, and tmux takes a semicolon at their end as its own.
        text = text.replace("\0", "")
        for start in range(0, len(text), 500):
            self._require("load-buffer", "-b", "typed", "-", input_text=text[start:start + 500])
            self._require("paste-buffer", "-d", "-r", "-b", "typed")

    def press(self, key):
        self._tmux("send-keys", key)

    def answer(self, text):
        self.wait(lambda: self.reads() or self.ended(), WAIT_LIMIT)
        self.type(text)
        self.press("Enter")

    def wait(self, condition, seconds):
        """True as soon as the condition is met, False if it is not met in time."""
        end = time.monotonic() + seconds
        while not condition():
            if time.monotonic() > end:
                return False
            time.sleep(POLL_TIME)
        return True

    def wait_for_prompt_or_end(self, settle_time=SETTLE_TIME, quiet_limit=QUIET_LIMIT):
        """True when the program asks, False when it has ended or does nothing for too long."""
        shown, since = None, time.monotonic()
        end = since + WAIT_LIMIT
        while not self.ended() and time.monotonic() < end:
            now, seen = time.monotonic(), (self.screen(), self._state("cursor_x"))
            if seen != shown:
                shown, since = seen, now
            elif self.at_prompt() and now - since >= settle_time:
                return True
            elif now - since >= quiet_limit:
                return False
            time.sleep(POLL_TIME)
        return False

    def close(self):
        """Closes the window, whatever the program is doing."""
        self._tmux("kill-server")
        self._folder.cleanup()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()


def lines_of(stream):
    """Lines as they come, then None. Read by a thread, so that a silent input does not block."""
    lines = queue.Queue()

    def read():
        while line := stream.readline(LINE_LIMIT) if stream else "":
            lines.put(line.rstrip("\r\n"))
        lines.put(None)

    threading.Thread(target=read, daemon=True).start()
    return lines


def answers(stream, terminal):
    lines = lines_of(stream)
    for _ in range(ANSWER_LIMIT):
        end, line = time.monotonic() + WAIT_LIMIT, None
        while time.monotonic() < end and not terminal.ended():
            try:
                line = lines.get(timeout=1)
                break
            except queue.Empty:
                pass
        if line is None:
            return
        yield line


def play(terminal, lines):
    """Returns a complaint, or None if the program ended by itself."""
    settle_time = SETTLE_TIME
    while terminal.wait_for_prompt_or_end(settle_time):
        line = next(lines, None)
        if line is not None:
            terminal.answer(line)
        elif settle_time == SETTLE_TIME:
            settle_time = LAST_SETTLE_TIME
        else:
            return "the program asked for more lines than the input has; its terminal was closed"
    return None if terminal.ended() else "the program stopped responding; its terminal was closed"


def show(text):
    try:
        if text:
            print(text, flush=True)
    except BrokenPipeError:  # the reader, such as head, has enough
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())


def run_unattended(command):
    """Nobody types. The output goes to a file, beside which the program uses the terminal as it likes."""
    with tempfile.NamedTemporaryFile() as output, \
            Terminal(["bash", "-c", 'exec "${@:2}" >"$1" 2>&1', "bash", output.name, *command]) as terminal:
        terminal.wait(terminal.ended, WAIT_LIMIT)
        shutil.copyfileobj(output, sys.stdout.buffer)
        return terminal.exit_status()


def main():
    if sys.argv[1] == "--unattended":
        return run_unattended(sys.argv[2:])
    if sys.stdin:
        sys.stdin.reconfigure(encoding="utf-8", errors="replace", newline="\n")
    with Terminal(sys.argv[1:], columns=COLUMNS) as terminal:
        complaint = play(terminal, answers(sys.stdin, terminal))
        show(terminal.screen())
        status = 1 if complaint else terminal.exit_status()
    if complaint:
        print(f"!! {complaint}", file=sys.stderr)
    return status


if __name__ == "__main__":
    sys.exit(main())
