// replaced by the virtual host builder
