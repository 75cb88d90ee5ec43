"""Fresh file systems for measurements.

ext4 does not hand out freshly deleted inodes for minutes, and creating many files right after
deleting a tree runs up to ten times slower. So every measurement writes to a file system of its own:
an image file, formatted and mounted through a loop device, thrown away afterwards. Where mounting is
not possible (no root, a container) plain folders have to do, and the report says so.
"""

import os
import shutil
import subprocess


class Volumes:
    def __init__(self, work):
        self.work = work
        self.count = 0
        self.mounted = []
        self.loops = self._can_mount()

    def _can_mount(self):
        if os.geteuid() != 0:
            return False
        try:
            self.discard(self.fresh(gigabytes=1, loops=True))
        except (subprocess.CalledProcessError, OSError):
            return False
        return True

    def fresh(self, gigabytes=24, loops=None):
        """An empty folder on a file system of its own. The image is sparse: it takes what is written."""
        self.count += 1
        folder = os.path.join(self.work, f"volume{self.count}")
        os.makedirs(folder)
        if loops if loops is not None else self.loops:
            image = folder + ".img"
            with open(image, "wb") as file:
                file.truncate(gigabytes << 30)
            # Without lazy initialisation in the background, which would run beside the measurement.
            options = "lazy_itable_init=1,lazy_journal_init=1"
            try:
                _quiet("mkfs.ext4", "-q", "-F", "-N", "2500000" if gigabytes > 8 else "65536",
                       "-E", options, image)
                _quiet("mount", "-o", "loop,noinit_itable", image, folder)
            except (subprocess.CalledProcessError, OSError):
                os.remove(image)
                os.rmdir(folder)
                raise
            self.mounted.append(folder)
            shutil.rmtree(os.path.join(folder, "lost+found"))
        return folder

    def discard(self, folder):
        if folder in self.mounted:
            _quiet("umount", folder)
            self.mounted.remove(folder)
            os.remove(folder + ".img")
            os.rmdir(folder)
        else:
            shutil.rmtree(folder, ignore_errors=True)

    def discard_all(self):
        for folder in list(self.mounted):
            self.discard(folder)


def _quiet(*command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
