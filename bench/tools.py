"""What is measured: the product, the floor and the peers, each by the same few calls.

A tool is made for one source and one archive folder. `first`, `again` and `restore` give the command
lines that are timed; `prepare` is what comes before and does not count.
"""

import os
import shutil
import subprocess


class Tool:
    name = ""

    def __init__(self, source, archive):
        self.source = source
        self.archive = archive
        self.environment = dict(os.environ)

    def prepare(self):
        pass

    def backup(self):
        """The command of a backup, the first and every later one."""
        raise NotImplementedError

    def restore(self, target):
        """The command that restores everything below `target`, and the folder to run it in."""
        raise NotImplementedError

    def restored(self, target):
        """Where the source's content stands after a restore."""
        return target + self.source

    def quietly(self, *command):
        subprocess.run(command, check=True, env=self.environment, stdout=subprocess.DEVNULL,
                       stderr=subprocess.PIPE)


class Vardelin(Tool):
    name = "vardelin"
    program = ""  # the path of vardelinctl

    def prepare(self):
        self.app = os.path.join(self.archive, "application")
        self.quietly(self.program, "init", self.app)
        self.quietly(*self._command("profile", "new", "Bench", "--source", self.source,
                                    "--dest", os.path.join(self.archive, "backups")))

    def _command(self, *words):
        return [self.program, "--app", self.app, "--quiet", *words]

    def backup(self):
        return self._command("backup", "Bench")

    def restore(self, target):
        return self._command("restore", "Bench", "--all", "--to", target), target

    def restored(self, target):
        return os.path.join(target, "C") + self.source


class VardelinEncrypted(Vardelin):
    """The same with a password, to be measured against our own plain run."""
    name = "vardelin-enc"

    def prepare(self):
        self.app = os.path.join(self.archive, "application")
        self.quietly(self.program, "init", self.app)
        secret = os.path.join(self.archive, "secret")  # the password, and the hint's answer
        with open(secret, "w", encoding="utf-8") as file:
            file.write("benchmark\n")
        self.quietly(*self._command("profile", "new", "Bench", "--source", self.source,
                                    "--dest", os.path.join(self.archive, "backups"), "--encrypt",
                                    "--password-file", secret, "--hint-question", "What is this?",
                                    "--hint-answer-file", secret))

    @classmethod
    def refusal(cls, work):
        """What the program says where it writes no encrypted archive; None where it does."""
        source, archive = os.path.join(work, "probe"), os.path.join(work, "probe archive")
        os.makedirs(source)
        os.makedirs(archive)
        with open(os.path.join(source, "file"), "w", encoding="utf-8") as file:
            file.write("content")
        try:
            tool = cls(source, archive)
            tool.prepare()
            tool.quietly(*tool.backup())
        except subprocess.CalledProcessError as error:
            return error.stderr.decode(errors="replace").strip()
        finally:
            shutil.rmtree(source)
            shutil.rmtree(archive)
        return None


class Floor(Tool):
    name = "floor"
    program = ""  # the path of bench/floor

    def backup(self):
        return [self.program, "compress", self.source, os.path.join(self.archive, "copies")]

    def restore(self, target):
        return [self.program, "decompress", os.path.join(self.archive, "copies"),
                os.path.join(target, "restored")], target

    def restored(self, target):
        return os.path.join(target, "restored")


class Restic(Tool):
    """Always encrypted; compression as it comes (zstd)."""
    name = "restic"

    def prepare(self):
        self.repository = os.path.join(self.archive, "repository")
        self.environment |= {"RESTIC_PASSWORD": "benchmark",
                             "RESTIC_CACHE_DIR": os.path.join(self.archive, "cache")}
        self.quietly("restic", "-q", "-r", self.repository, "init")

    def backup(self):
        return ["restic", "-q", "-r", self.repository, "backup", self.source]

    def restore(self, target):
        return ["restic", "-q", "-r", self.repository, "restore", "latest", "--target", target], target


class Borg(Tool):
    name = "borg"
    encryption = "none"

    def prepare(self):
        self.runs = 0
        self.repository = os.path.join(self.archive, "repository")
        self.environment |= {"BORG_BASE_DIR": os.path.join(self.archive, "base"),
                             "BORG_PASSPHRASE": "benchmark",
                             "BORG_UNKNOWN_UNENCRYPTED_REPO_ACCESS_IS_OK": "yes"}
        self.quietly("borg", "init", "--encryption", self.encryption, self.repository)

    def backup(self):
        self.runs += 1
        return ["borg", "create", "--compression", "zstd,3", f"{self.repository}::run{self.runs}",
                self.source]

    def restore(self, target):
        return ["borg", "extract", f"{self.repository}::run{self.runs}"], target


class BorgEncrypted(Borg):
    name = "borg-enc"
    encryption = "repokey-blake2"


class Rsync(Tool):
    """Neither compresses nor keeps versions: a figure for the unchanged run only."""
    name = "rsync"

    def backup(self):
        return ["rsync", "-a", self.source + "/", os.path.join(self.archive, "copy")]

    def restore(self, target):
        return ["rsync", "-a", os.path.join(self.archive, "copy") + "/",
                os.path.join(target, "restored")], target

    def restored(self, target):
        return os.path.join(target, "restored")


PEERS = {"restic": Restic, "borg": Borg, "borg-enc": BorgEncrypted, "rsync": Rsync}
_PROGRAMS = {"borg-enc": "borg"}


def installed_peers(names):
    return [name for name in names if shutil.which(_PROGRAMS.get(name, name))]
