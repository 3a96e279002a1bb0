"""What can go wrong. Wrong shapes and values are ValueError, wrong types TypeError; these classes are the rest."""


class EsttformError(Exception):
    """Base of the exceptions of this package."""


class SettingsError(EsttformError, ValueError):
    """A setting out of range, a contradiction, a file that cannot be read; the text says what was expected."""


class ClosedError(EsttformError, ValueError):
    """An operation on a closed estimator."""


class StepError(EsttformError, ValueError):
    """The block refused a step, for example too few points; the text begins with the identifier of its message."""


class LoadError(EsttformError, OSError):
    """The block's library could not be loaded."""


class LostProcessError(EsttformError, RuntimeError):
    """Items that ended every process they were given to."""


class InternalError(EsttformError, RuntimeError):
    """A fault of this system."""
