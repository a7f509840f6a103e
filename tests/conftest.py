"""For all tests in Python."""
import signal

# A shell starts what it leaves in the background with SIGINT ignored, and so would every program
# of the tests be.
signal.signal(signal.SIGINT, signal.default_int_handler)
